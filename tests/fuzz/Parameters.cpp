#include "u3v/parameters/ParameterFile.h"
#include "u3v/parameters/SettingList.h"

#include "u3v/core/Status.h"

#include "tests/fuzz/Bytes.h"
#include "tests/fuzz/MemoryPort.h"

namespace Orvi::Fuzz {

using U3v::Parameter;
using U3v::ParameterFile;

namespace {

constexpr std::string_view xml = R"(<RegisterDescription SchemaMajorVersion="1" SchemaMinorVersion="1">
<Category Name="Root"><pFeature>Width</pFeature><pFeature>Gain</pFeature><pFeature>Mode</pFeature>
<pFeature>Flag</pFeature><pFeature>Name</pFeature><pFeature>Raw</pFeature><pFeature>Sel</pFeature></Category>
<Integer Name="Width"><Streamable>Yes</Streamable><pValue>WidthReg</pValue><Min>1</Min><Max>4096</Max></Integer>
<IntReg Name="WidthReg"><Address>4</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></IntReg>
<Enumeration Name="Sel"><EnumEntry Name="Red"><Value>0</Value></EnumEntry><EnumEntry Name="Blue"><Value>1</Value>
</EnumEntry><pValue>SelReg</pValue><pSelected>Gain</pSelected></Enumeration>
<IntReg Name="SelReg"><Address>16</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></IntReg>
<Float Name="Gain"><Streamable>Yes</Streamable><pIsLocked>Flag</pIsLocked><pValue>GainReg</pValue></Float>
<FloatReg Name="GainReg"><Address>32</Address><pIndex Offset="8">SelReg</pIndex><Length>8</Length>
<AccessMode>RW</AccessMode><pPort>Device</pPort></FloatReg>
<Enumeration Name="Mode"><Streamable>Yes</Streamable><EnumEntry Name="Off"><Value>0</Value></EnumEntry>
<EnumEntry Name="On"><Value>1</Value></EnumEntry><Value>0</Value></Enumeration>
<Boolean Name="Flag"><Streamable>Yes</Streamable><pValue>FlagReg</pValue></Boolean>
<IntReg Name="FlagReg"><Address>48</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></IntReg>
<StringReg Name="Name"><Streamable>Yes</Streamable><Address>64</Address><Length>8</Length><AccessMode>RW</AccessMode>
<pPort>Device</pPort></StringReg>
<Register Name="Raw"><Streamable>Yes</Streamable><Address>80</Address><Length>4</Length><AccessMode>RW</AccessMode>
<pPort>Device</pPort></Register><Port Name="Device"/></RegisterDescription>)";

bool AreEqual(const Parameter &a, const Parameter &b)
{
    return a.feature == b.feature && a.selectors == b.selectors && a.value == b.value;
}

void Apply(const ParameterFile &file)
{
    MemoryPort port;
    const auto nodes = GenApi::NodeMap::Load(xml, port);
    auto settings = U3v::SettingList::Check(*nodes, file.parameters, "file");
    U3v::SelectorMover mover(*nodes);
    try {
        settings.Apply(mover);
    } catch (const GenApi::Error &) {
        settings.Undo(mover);
    }
}

} // namespace

void Parameters(Input input)
{
    try {
        const ParameterFile file = U3v::ParseParameters(TextOf(input), "file");
        const ParameterFile again = U3v::ParseParameters(U3v::FormatParameters(file, {"a comment"}), "file");
        Require(again.model == file.model && std::equal(file.parameters.begin(), file.parameters.end(),
                                                        again.parameters.begin(), again.parameters.end(), AreEqual),
                "a file that is written reads back the same");
        Apply(file);
    } catch (const GenApi::Error &error) {
        Require(std::string_view(error.what()).starts_with("file, line "), "an error names the file and the line");
    }
}

} // namespace Orvi::Fuzz
