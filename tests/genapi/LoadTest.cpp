#include "TestMap.h"

#include <gmock/gmock.h>

#include <functional>

namespace Orvi::GenApi {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

std::string Int(const std::string &name, const std::string &inside = "<Value>1</Value>")
{
    return Say("<Integer Name=\"", name, "\">", inside, "</Integer>");
}

std::string Knife(const std::string &inside) { return Say("<IntSwissKnife Name=\"K\">", inside, "</IntSwissKnife>"); }

TEST(Load, NamesNodeLineAndReason)
{
    const struct {
        std::string nodes, error;
    } rows[] = {
        // clang-format off
        {"\n\n" + Int("A", "\n<pValue>Gone</pValue>"), "[A] line 6: pValue, there is no node 'Gone'"},
        {Int("A") + "\n" + Int("A"), "[A] line 4: Integer has the name of the node of line 3 too"},
        {Int("A", "<Value>twelve</Value>"), "[A] line 3: Value, 'twelve' is no integer"},
        {Int("A", "<Value>9223372036854775808</Value>"), "[A] line 3: Value, '9223372036854775808' fits no 64-bit integer"},
        {Int("A", "<Value>0x10000000000000000</Value>"), "[A] line 3: Value, '0x10000000000000000' fits no 64-bit integer"},
        {Int("A", "<Value/>"), "[A] line 3: Value, '' is no integer"},
        {Int("A", ""), "[A] line 3: Integer has no value"},
        {"<Float Name=\"F\"><Value>nan</Value></Float>", "[F] line 3: Value, 'nan' is no number"},
        {"<Float Name=\"F\"><Value>1,5</Value></Float>", "[F] line 3: Value, '1,5' is no number"},
        {Int("A", "<Value>1</Value><Visibility>Everyone</Visibility>"), "[A] line 3: Visibility, 'Everyone' is none of Beginner, Expert, Guru, Invisible"},
        {Int("A", "<Value>1</Value><Streamable>maybe</Streamable>"), "[A] line 3: Streamable, 'maybe' is none of No, Yes, false, true, 0, 1"},
        {Int("A", "<Value>1</Value><EventID>xyz</EventID>"), "[A] line 3: EventID, 'xyz' is no hexadecimal number"},
        {"<Integer><Value>1</Value></Integer>", "[description] line 3: Integer has no Name"},
        {Int("A", "<pValue>S</pValue>") + "<String Name=\"S\"><Value/></String>", "[A] line 3: Integer needs a number of S, which is a String"},
        {"<String Name=\"S\"><pValue>A</pValue></String>" + Int("A"), "[S] line 3: pValue, 'A' has no text"},
        {Knife("<Formula>1 +</Formula>"), "[K] line 3: IntSwissKnife formula 1 +: it ends too early"},
        {Knife("<Formula>X</Formula>"), "[K] line 3: IntSwissKnife formula X: 'X' is neither a variable nor a function"},
        {Knife(""), "[K] line 3: IntSwissKnife has no formula"},
        {Int("A") + Knife("<pVariable Name=\"V\">A</pVariable><Constant Name=\"V\">1</Constant><Formula>V</Formula>"), "[K] line 3: Constant, 'V' is there twice"},
        {Int("A") + Knife("<pVariable>A</pVariable><Formula>1</Formula>"), "[K] line 3: pVariable, the name is missing"},
        {Int("A") + Knife("<pVariable Name=\"V\">A</pVariable><Formula>V.Colour</Formula>"), "[K] line 3: IntSwissKnife formula V.Colour: 'V.Colour' is neither a variable nor a function"},
        {Reg("IntReg", "R", 0, "", 9), "[R] line 3: IntReg has a Length of 9, 1 to 8 can be"},
        {Reg("IntReg", "R", 0, "", 0), "[R] line 3: IntReg has a Length of 0, 1 to 8 can be"},
        {Reg("FloatReg", "R", 0, "", 3), "[R] line 3: FloatReg has a Length of 3, 4 or 8 can be"},
        {Reg("StringReg", "R", 0, "", 1 << 30), "[R] line 3: StringReg has a Length of 1073741824, 1 to 67108864 can be"},
        {"<IntReg Name=\"R\"><Address>0</Address></IntReg>", "[R] line 3: IntReg has no Length"},
        {"<IntReg Name=\"R\"><Address>0</Address><pLength>A</pLength></IntReg>" + Int("A", "<pValue>B</pValue>") + Int("B"), "[R] line 3: IntReg has a pLength, a constant Length is needed"},
        {"<IntReg Name=\"R\"><Length>4</Length><pPort>A</pPort></IntReg>" + Int("A"), "[R] line 3: pPort, 'A' is no Port"},
        {Reg("MaskedIntReg", "R", 0), "[R] line 3: MaskedIntReg needs Bit or both LSB and MSB"},
        {Reg("MaskedIntReg", "R", 0, "<LSB>1</LSB>"), "[R] line 3: MaskedIntReg needs Bit or both LSB and MSB"},
        {Reg("MaskedIntReg", "R", 0, "<Bit>32</Bit>"), "[R] line 3: MaskedIntReg has bits outside of its 32 bits"},
        {"<Enumeration Name=\"E\"><Value>0</Value><EnumEntry Name=\"X\"><Value>0</Value></EnumEntry><EnumEntry Name=\"X\"><Value>1</Value></EnumEntry></Enumeration>", "[E] line 3: Enumeration has the entry X twice"},
        {"<Enumeration Name=\"E\"><Value>0</Value><EnumEntry Name=\"X\"/></Enumeration>", "[EnumEntry_E_X] line 3: EnumEntry has no Value"},
        {"<Boolean Name=\"B\"><Value>0</Value><OnValue>0</OnValue></Boolean>", "[B] line 3: Boolean has the same OnValue and OffValue"},
        {"<Command Name=\"C\"><Value>0</Value></Command>", "[C] line 3: Command has no CommandValue"},
        {"<Enumeration Name=\"E\"><Value>0</Value><EnumEntry Name=\"X\"><Value>0</Value></EnumEntry></Enumeration>" + Knife("<pVariable Name=\"V.Entry.Y\">E</pVariable><Formula>V.Entry.Y</Formula>"), "[K] line 3: IntSwissKnife formula V.Entry.Y: 'V.Entry.Y' is neither a variable nor a function"},
        {Int("A", "<Value>1</Value><pValidValueSet>B</pValidValueSet>") + Int("B"), "[A] line 3: pValidValueSet, 'B' lists no values"},
        {Int("A", "<Value>1</Value><ValidValueSet>1;two</ValidValueSet>"), "[A] line 3: ValidValueSet, 'two' is no integer"},
        {"<Node Name=\"N\"/>" + Int("A", "<pValue>N</pValue>"), "[A] line 3: Integer needs a number of N, which is a Node"},
        {"<Converter Name=\"C\"><FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom></Converter>", "[C] line 3: Converter has no pValue"},
        {"<Converter Name=\"C\"><FormulaTo>TO</FormulaTo><FormulaFrom>TO</FormulaFrom><pValue>A</pValue></Converter>" + Int("A"), "[C] line 3: Converter formula TO: 'TO' is neither a variable nor a function"},
        // clang-format on
    };
    for (const auto &row : rows)
        EXPECT_EQ(LoadError(row.nodes), row.error);
}

TEST(Load, RefusesWhatDependsOnItself)
{
    EXPECT_EQ(
        LoadError(Int("A", "<pValue>B</pValue>") + Int("B", "<pValue>C</pValue>") + Int("C", "<pValue>A</pValue>")),
        "[A] line 3: Integer depends on itself for its value, A -> B -> C -> A");
    EXPECT_EQ(LoadError(Int("A", "<pValue>A</pValue>")), "[A] line 3: Integer depends on itself for its value, A -> A");
    EXPECT_THAT(LoadError(Int("A") + Knife("<pVariable Name=\"V\">K</pVariable><Formula>V</Formula>")),
                HasSubstr("[K] line 3: IntSwissKnife depends on itself for its value"));
    EXPECT_THAT(LoadError(Int("A", "<Value>1</Value><pMax>B</pMax>") +
                          Int("B", "<pValue>C</pValue><pIsAvailable>B</pIsAvailable>") +
                          Reg("IntReg", "C", 0, "<pAddress>B</pAddress>")),
                HasSubstr("depends on itself for its value"));
    EXPECT_THAT(LoadError(Int("A", "<Value>1</Value><pValueCopy>B</pValueCopy>") +
                          Int("B", "<Value>1</Value><pValueCopy>A</pValueCopy>")),
                HasSubstr("depends on itself for its writing"));
    EXPECT_THAT(LoadError("<Category Name=\"A\"><pFeature>B</pFeature></Category><Category "
                          "Name=\"B\"><pFeature>A</pFeature></Category>"),
                HasSubstr("depends on itself for its tree of features"));
}

TEST(Load, AcceptsLimitsThatLookAtEachOthersValues)
{
    TestMap map(Reg("IntReg", "WReg", 0) + Reg("IntReg", "OReg", 4) +
                Int("Width", "<pValue>WReg</pValue><pMax>WMax</pMax>") +
                Int("Offset", "<pValue>OReg</pValue><pMax>OMax</pMax>") +
                "<IntSwissKnife Name=\"WMax\"><pVariable Name=\"O\">Offset</pVariable><Formula>100 - "
                "O</Formula></IntSwissKnife>"
                "<IntSwissKnife Name=\"OMax\"><pVariable Name=\"W\">Width</pVariable><Formula>100 - "
                "W</Formula></IntSwissKnife>");
    map.Set("Width", 60);
    EXPECT_EQ(map->IntMax(map["Offset"]), 40);
    map.Set("Offset", 40);
    EXPECT_EQ(map->IntMax(map["Width"]), 60);
}

TEST(Load, BoundsTheDepthOfReferences)
{
    const auto chain = [](int length) {
        std::string nodes = Int("N0");
        for (int i = 1; i < length; ++i)
            nodes += Int(Say("N", std::to_string(i)), Say("<pValue>N", std::to_string(i - 1), "</pValue>"));
        return nodes;
    };
    TestMap map(chain(150));
    EXPECT_EQ(map.Int("N149"), 1);
    map.Set("N149", 5);
    EXPECT_EQ(map.Int("N0"), 5);
    EXPECT_THAT(LoadError(chain(300)), HasSubstr("depends on other nodes over more than"));
    EXPECT_THAT(LoadError(chain(50000)), HasSubstr("depends on other nodes over more than"));
}

TEST(Load, BoundsTheWorkOfOneCall)
{
    // Each level uses the one below twice: 2 to the power of 60 evaluations.
    std::string values = Int("V0"), ranges = Int("R0", "<Value>1</Value><Min>0</Min><Max>9</Max>");
    for (int i = 1; i <= 60; ++i) {
        const std::string here = std::to_string(i), below = std::to_string(i - 1);
        values += Say("<IntSwissKnife Name=\"V", here, "\"><pVariable Name=\"A\">V", below,
                      "</pVariable><Formula>A + A</Formula></IntSwissKnife>");
        ranges += Say("<IntConverter Name=\"R", here, "\"><pVariable Name=\"A.Max\">R", below,
                      "</pVariable><FormulaTo>FROM + A.Max</FormulaTo><FormulaFrom>TO - A.Max</FormulaFrom><pValue>R",
                      below, "</pValue></IntConverter>");
    }
    std::string chosen = Int("C0"), copied = Int("W0"), asked = Int("Q0");
    for (int i = 1; i <= 60; ++i) {
        const std::string here = std::to_string(i), below = std::to_string(i - 1);
        chosen += Int("C" + here,
                      Say("<pIndex>C", below, "</pIndex><pValueIndexed Index=\"1\">C", below, "</pValueIndexed>"));
        copied += Int("W" + here, Say("<pValue>W", below, "</pValue><pValueCopy>W", below, "</pValueCopy>"));
        asked += Int("Q" + here, Say("<Value>1</Value><pIsAvailable>Q", below, "</pIsAvailable>"));
        asked += Say("<IntSwissKnife Name=\"P", here, "\"><pVariable Name=\"A\">", (i == 1 ? "Q" : "P"), below,
                     "</pVariable><pVariable Name=\"B\">", (i == 1 ? "Q" : "P"), below,
                     "</pVariable><Formula>1</Formula></IntSwissKnife>");
    }
    const TestMap others(chosen + copied + asked);
    for (const auto &ask : std::initializer_list<std::function<void()>>{
             [&] { others.Int("C60"); }, [&] { others->Access(others["C60"]); },
             [&] { others->SetInt(others["W60"], 1); }, [&] { others->Access(others["P60"]); }})
        EXPECT_THAT(ErrorOf(ask), HasSubstr("takes more than 100000 steps"));
    EXPECT_EQ(others.Int("C10"), 1);
    TestMap map(values + ranges);
    EXPECT_THAT(ErrorOf([&] { map.Int("V60"); }), HasSubstr("[V60] takes more than 100000 steps to evaluate"));
    EXPECT_THAT(ErrorOf([&] { map->IntMax(map["R60"]); }), HasSubstr("[R60] takes more than 100000 steps to evaluate"));
    EXPECT_EQ(map.Int("V10"), 1024);
}

/// Damages a text: takes bytes out, puts others in, or doubles a piece, always the same for the same seed.
std::string Damaged(std::string text, unsigned seed)
{
    const auto next = [&] { return seed = seed * 1664525u + 1013904223u; };
    constexpr std::string_view other = "<>&\"'/ 0x-9ZpV=\0";
    for (unsigned i = 0; i < 1 + seed % 4; ++i) {
        const std::size_t at = next() % text.size(), length = 1 + (next() >> 8) % 12;
        switch ((next() >> 16) % 4) {
        case 0:
            text.erase(at, length);
            break;
        case 1:
            text[at] = other[(next() >> 8) % other.size()];
            break;
        case 2:
            text.insert(at, text.substr((next() >> 8) % text.size(), 8 * length));
            break;
        default:
            text.resize(std::max<std::size_t>(at, 10));
        }
    }
    return text;
}

/// Asks every node for everything; nothing but the two kinds of error may come out.
void UseAll(const NodeMap &map)
{
    const auto quiet = [](auto &&f) {
        try {
            f();
        } catch (const Error &) {
        } catch (const U3v::StatusError &) {
        }
    };
    for (NodeId id = 0; id < map.Size(); ++id) {
        quiet([&] { map.DescribeAccess(id); });
        quiet([&] { map.GetInt(id, {.verify = true}); });
        quiet([&] { map.GetFloat(id, {.verify = true}); });
        quiet([&] { map.GetEnumText(id); });
        quiet([&] { map.GetString(id); });
        quiet([&] { map.GetBool(id); });
        quiet([&] { map.IsDone(id); });
        quiet([&] { map.Features(id); });
    }
}

TEST(Load, SurvivesDamagedDescriptions)
{
    const std::string whole = Describe(
        "<Category Name=\"Root\"><pFeature>Gain</pFeature><pFeature>Mode</pFeature></Category>\n" +
        Reg("IntReg", "Raw", 0, "<Sign>Signed</Sign><Endianess>BigEndian</Endianess><PollingTime>10</PollingTime>") +
        Reg("MaskedIntReg", "Field", 4, "<LSB>3</LSB><MSB>9</MSB><pInvalidator>Mode</pInvalidator>") +
        Reg("FloatReg", "F", 8) + Reg("StringReg", "S", 16, "", 8) +
        "<Float Name=\"Gain\"><pValue>Conv</pValue><Min>-1</Min><pMax>F</pMax><Unit>dB</Unit></Float>"
        "<Converter Name=\"Conv\"><pVariable Name=\"A\">Field</pVariable><FormulaTo>FROM * (100 + A)</FormulaTo>"
        "<FormulaFrom>TO / (100 + A)</FormulaFrom><pValue>Raw</pValue></Converter>"
        "<Enumeration Name=\"Mode\"><EnumEntry Name=\"A\"><Value>0</Value></EnumEntry><EnumEntry Name=\"B\">"
        "<Value>1</Value></EnumEntry><pValue>Field</pValue><pSelected>Gain</pSelected></Enumeration>"
        "<Boolean Name=\"On\"><pValue>Field</pValue></Boolean><String Name=\"T\"><pValue>S</pValue></String>"
        "<Command Name=\"Go\"><pValue>Raw</pValue><CommandValue>1</CommandValue></Command>"
        "<IntSwissKnife Name=\"K\"><pVariable Name=\"A\">Raw</pVariable><pVariable Name=\"M\">Mode</pVariable>"
        "<Expression Name=\"X\">A ** 2</Expression><Formula>M = M.Entry.B ? X : ABS(A - 3)</Formula></IntSwissKnife>");
    MemoryPort port;
    int loaded = 0, refused = 0;
    for (unsigned seed = 0; seed < 3000; ++seed) {
        std::unique_ptr<NodeMap> map;
        const std::string error = ErrorOf([&] { map = NodeMap::Load(Damaged(whole, seed), port); });
        EXPECT_EQ(map == nullptr, !error.empty());
        ++(map ? loaded : refused);
        if (map)
            UseAll(*map);
    }
    EXPECT_GT(loaded, 0);
    EXPECT_GT(refused, 0);
}

TEST(Load, BoundsTheNestingOfGroups)
{
    std::string open, close;
    for (int i = 0; i < 1000; ++i) {
        open += "<Group>";
        close += "</Group>";
    }
    EXPECT_THAT(LoadError(open + Int("A") + close), HasSubstr("is nested too deeply"));
}

TEST(Load, RefusesWhatIsNoDescription)
{
    MemoryPort port;
    const auto error = [&](std::string_view xml) { return ErrorOf([&] { NodeMap::Load(xml, port); }); };
    EXPECT_THAT(error(""), StartsWith("[description] line 1: "));
    EXPECT_THAT(error(std::string(100, '\0')), StartsWith("[description] line 1: "));
    EXPECT_THAT(error("hello"), StartsWith("[description] line 1: "));
    EXPECT_THAT(error("<RegisterDescription>\n\n<Integer Name=\"A\">"), StartsWith("[description] line 3: no XML"));
    EXPECT_EQ(error(std::string((64 << 20) + 1, ' ')), "[description] is too large, 67108865 bytes");
    EXPECT_THAT(error("<Other/>"), HasSubstr("RegisterDescription is missing"));
    EXPECT_THAT(error("<RegisterDescription/>"), HasSubstr("has no nodes"));
    EXPECT_THAT(error("<RegisterDescription SchemaMajorVersion=\"7\"/>"), HasSubstr("schema version 7"));
}

TEST(Load, TakesPaddingByteOrderMarkAndWindowsLines)
{
    MemoryPort port;
    std::string xml = "\xEF\xBB\xBF" + Describe(Int("A"));
    for (std::size_t at = 0; (at = xml.find('\n', at)) != xml.npos; at += 2)
        xml.insert(at, 1, '\r');
    const auto map = NodeMap::Load(xml + std::string(512, '\0'), port);
    EXPECT_EQ(map->GetInt(*map->Find("A")), 1);
}

TEST(Load, TakesTheUsualEncodings)
{
    const std::string utf8 = "\u00B0C \u20AC \U0001F4F7", latin1 = "\xB0"
                                                                   "C";
    const auto unitOf = [](std::string_view xml) {
        MemoryPort port;
        const auto map = NodeMap::Load(xml, port);
        return std::string(map->Unit(*map->Find("A")));
    };
    const auto described = [](const std::string &unit) {
        return Describe(Int("A", "<Value>1</Value><Unit>" + unit + "</Unit>"));
    };
    EXPECT_EQ(unitOf(described(utf8)), utf8);
    EXPECT_EQ(unitOf(described(latin1)), "\u00B0C") << "a stray byte in what calls itself UTF-8";
    std::string declared = described(latin1 + "\xC3\xA4");
    declared.replace(declared.find("utf-8"), 5, "ISO-8859-1");
    EXPECT_EQ(unitOf(declared), "\u00B0C\u00C3\u00A4");

    for (const bool bigEndian : {false, true})
        for (const bool mark : {false, true}) {
            std::u16string wide = mark ? u"\uFEFF" : u"";
            const std::string ascii = described("@");
            for (const char c : ascii.substr(0, ascii.find('@')))
                wide += static_cast<char16_t>(c);
            wide += u"\u00B0C \u20AC \U0001F4F7";
            for (const char c : ascii.substr(ascii.find('@') + 1))
                wide += static_cast<char16_t>(c);
            std::string bytes;
            for (const char16_t unit : wide + std::u16string(5, u'\0')) {
                const char low = static_cast<char>(unit & 0xFF), high = static_cast<char>(unit >> 8);
                bytes += bigEndian ? high : low;
                bytes += bigEndian ? low : high;
            }
            EXPECT_EQ(unitOf(bytes), utf8);
        }
    // Half of a pair, in the text and at its end.
    std::string half("<\0R\0>\0\x3D\xD8 \0\x3D\xD8", 12);
    MemoryPort port;
    EXPECT_THAT(ErrorOf([&] { NodeMap::Load(half, port); }), StartsWith("[description] line 1: no XML"));
    std::string inside;
    for (const char c : described("@"))
        inside += c == '@' ? std::string("\x3D\xD8", 2) : std::string{c, '\0'};
    EXPECT_EQ(unitOf(inside), "\uFFFD");
    const std::string broken =
        "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<!-- \xB0\xB0\xB0\n -->\n<RegisterDescription>\n" +
        Int("A", "<Value>x</Value>") + "</RegisterDescription>";
    EXPECT_THAT(ErrorOf([&] { NodeMap::Load(broken, port); }), StartsWith("[A] line 5: "));
}

TEST(Load, ReadsWindowsTextsAsWhatTheyAre)
{
    // The last two are no UTF-8 either: an overlong form, and a character beyond the last one.
    const std::string windows = "\x80 \x96 \xB5m\x99 \x81 \xC0\xAF \xF5\x8A\x8A\x8A",
                      utf8 = "\u20AC \u2013 \u00B5m\u2122 \u0081 \u00C0\u00AF \u00F5\u0160\u0160\u0160";
    const auto unitOf = [&](const std::string &encoding) {
        std::string xml = Describe(Int("A", "<Value>1</Value><Unit>" + windows + "</Unit>"));
        xml.replace(xml.find("utf-8"), 5, encoding);
        MemoryPort port;
        const auto map = NodeMap::Load(xml, port);
        return std::string(map->Unit(*map->Find("A")));
    };
    for (const char *encoding : {"windows-1252", "Windows-1252", "cp1252", "ISO-8859-1", "utf-8"})
        EXPECT_EQ(unitOf(encoding), utf8) << encoding;
}

TEST(Load, ReadsTextsAroundComments)
{
    TestMap map("<Integer Name=\"A\"><Value><!-- a -->1<!-- b -->2<!-- c --></Value></Integer>" +
                Int("B", "<ToolTip><![CDATA[a < b]]> &amp; c</ToolTip><pValue><!-- x --> A </pValue>") +
                Knife("<pVariable Name=\"V\">A</pVariable><Formula>V <!-- the half of it --> * 2\n + 1</Formula>"));
    EXPECT_EQ(map.Int("A"), 12);
    EXPECT_EQ(map.Int("B"), 12);
    EXPECT_EQ(map->ToolTip(map["B"]), "a < b & c");
    EXPECT_EQ(map.Int("K"), 25);
}

/// Vendors put anything into their extensions, what looks like nodes and properties included.
TEST(Load, KeepsExtensionsOutOfTheWay)
{
    const std::string extension = "<Extension xmlns:v=\"urn:v\"><Value>7</Value><v:Thing a=\"1\">text<b/></v:Thing>"
                                  "<Integer Name=\"A\"><Value>9</Value><Extension/></Integer><pValue>Gone</pValue>"
                                  "<EnumEntry Name=\"X\"><Value>5</Value></EnumEntry><IntSwissKnife Name=\"A\"/>"
                                  "<StructEntry Name=\"A\"/></Extension>";
    TestMap map(extension + "<Group Comment=\"g\">" + extension + Int("A", extension + "<Value>1</Value>" + extension) +
                "</Group>" + Reg("IntReg", "R", 0, extension) + "<Enumeration Name=\"E\">" + extension +
                "<EnumEntry Name=\"X\">" + extension +
                "<Value>1</Value></EnumEntry><Value>1</Value></Enumeration>"
                "<StructReg><Address>8</Address><Length>4</Length><pPort>Device</pPort>" +
                extension + "<StructEntry Name=\"S\"><Bit>0</Bit>" + extension +
                "</StructEntry></StructReg>"
                "<Category Name=\"Root\">" +
                extension + "<pFeature>A</pFeature></Category>");
    EXPECT_EQ(map.Int("A"), 1);
    EXPECT_EQ(map.Int("R"), 0);
    EXPECT_EQ(map.Int("S"), 0);
    EXPECT_EQ(map->GetEnumText(map["E"]), "X");
    EXPECT_EQ(map->EntryCount(map["E"]), 1u);
    EXPECT_EQ(map->Size(), 7u);
    EXPECT_THAT(map->Notes(), testing::IsEmpty());
}

TEST(Load, KeepsLongTexts)
{
    std::string nodes;
    for (int i = 0; i < 8; ++i)
        nodes +=
            Int(Say("N", std::to_string(i)),
                Say("<Value>1</Value><ToolTip>", std::string(1000u << i, static_cast<char>('a' + i)), "</ToolTip>"));
    TestMap map(nodes);
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(map->ToolTip(map[Say("N", std::to_string(i))]), std::string(1000u << i, static_cast<char>('a' + i)));
}

TEST(Load, BoundsTheNamesOfAFormula)
{
    std::string names;
    for (int i = 0; i <= 1000; ++i)
        names += Say("<Constant Name=\"C", std::to_string(i), "\">1</Constant>");
    EXPECT_EQ(LoadError(Knife(names + "<Formula>1</Formula>")), "[K] line 3: Constant, a formula can have 1000 names");
}

TEST(Load, NotesAreBounded)
{
    std::string strange;
    for (int i = 0; i < 300; ++i)
        strange += "<Colour>red</Colour>";
    TestMap map(Int("A", "<Value>1</Value>" + strange));
    EXPECT_EQ(map->Notes().size(), 101u);
    EXPECT_EQ(map->Notes().back(), "and more");
}

TEST(Load, ReadsNumbersAsTheyAreWritten)
{
    TestMap map(Int("Hex", "<Value> 0x7fFF </Value>") + Int("Neg", "<Value>-9223372036854775808</Value>") +
                Int("Pattern", "<Value>0xFFFFFFFFFFFFFFFF</Value>") + Int("Plus", "<Value>+5</Value>") +
                "<Float Name=\"F\"><Value>-1.5e-3</Value></Float><Float Name=\"G\"><Value>+0x10</Value></Float>");
    EXPECT_EQ(map.Int("Hex"), 0x7FFF);
    EXPECT_EQ(map.Int("Neg"), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(map.Int("Pattern"), -1);
    EXPECT_EQ(map.Int("Plus"), 5);
    EXPECT_EQ(map.Float("F"), -1.5e-3);
    EXPECT_EQ(map.Float("G"), 16);
    TestMap open("<Float Name=\"F\"><Value>1</Value><Min>-INF</Min><Max>INF</Max></Float>");
    EXPECT_EQ(open->FloatMax(open["F"]), std::numeric_limits<double>::infinity());
    open.SetFloat("F", -1e300);
}

TEST(Load, ReadsNothingFromTheCamera)
{
    TestMap map(Reg("IntReg", "A", 0));
    EXPECT_EQ(map.port.reads, 0);
}

} // namespace
} // namespace Orvi::GenApi
