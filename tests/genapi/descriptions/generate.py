#!/usr/bin/env python3
"""Writes the large camera descriptions of the tests, each with a script of what its nodes must give.

usage: generate.py FOLDER

A description is a camera with image format, acquisition and device features and a number of channels, each of which has
selectors over banked registers, converters, locks, status bits and counters. Values.h tells the form of the scripts.
"""
import math
import pathlib
import sys
from xml.sax.saxutils import escape

# name, channels, words in each description: the size of the text beside the number of nodes
CAMERAS = [("Modular", 8, 1), ("Studio", 33, 3), ("Wide", 200, 1)]

WORDS = ("Sets what the channel does while images are taken; the value is kept when the camera is switched off. ",
         "Changes take effect with the next image. ", "Not every firmware of this family has it. ")


class Camera:
    def __init__(self, name, words):
        self.name, self.words = name, words
        self.nodes, self.script = [], []
        self.categories = {"Root": []}
        self.free = 0x1000

    def node(self, kind, name, inside, category=None, attributes=""):
        about = ""
        if category:
            about = (f"<ToolTip>{name} of the {self.name}.</ToolTip><Description>"
                     f"{escape(''.join(WORDS[i % len(WORDS)] for i in range(self.words)))}</Description>"
                     f"<DisplayName>{name}</DisplayName>")
            self.categories.setdefault(category, []).append(name)
            attributes += ' NameSpace="Standard"'
        self.nodes.append(f'  <{kind} Name="{name}"{attributes}>{about}{inside}</{kind}>')

    def place(self, size):
        address = self.free
        self.free += size
        return address

    def register(self, kind, name, value=None, size=4, more="", mode="RW", places=1):
        """A register of its own; the value is put at its first place."""
        address = self.place(size * places)
        self.node(kind, name, f"<Address>{address:#x}</Address><Length>{size}</Length><AccessMode>{mode}</AccessMode>"
                              f"<pPort>Device</pPort>{more}")
        if value is not None:
            self.put(address, size, value, "BigEndian" in more)
        return address

    def put(self, address, size, value, big=False):
        if isinstance(value, float):
            self.say(f"put{'f' if size == 4 else 'd'} {address:#x} {value!r}")
        else:
            data = value.to_bytes(size, "big" if big else "little", signed=value < 0)
            self.say(f"put {address:#x} {data.hex()}")

    def say(self, line):
        self.script.append(line)

    def integer(self, name, category, value, low, high, inc=1, lock="", more="", size=4, big=False):
        order = "<Endianess>BigEndian</Endianess>" if big else ""
        address = self.register("IntReg", f"{name}_Reg", value, size, f"<Sign>Unsigned</Sign>{order}")
        self.node("Integer", name, f"{lock}{more}<pValue>{name}_Reg</pValue><Min>{low}</Min><Max>{high}</Max>"
                                   f"<Inc>{inc}</Inc>", category)
        for what, number in (("int", value), ("min", low), ("max", high), ("inc", inc)):
            self.say(f"{what} {name} {number}")
        self.say(f"access {name} RW")
        return address

    def enumeration(self, name, category, entries, value, more="", bit=None):
        """Entries: name to number; bit names the masked register whose bit 0 says that the last one is there."""
        self.register("IntReg", f"{name}_Reg", entries[value], 4)
        inside = ""
        for i, (entry, number) in enumerate(entries.items()):
            present = f"<pIsImplemented>{bit}</pIsImplemented>" if bit and i == len(entries) - 1 else ""
            inside += (f'<EnumEntry Name="{entry}" NameSpace="Standard"><ToolTip>{name} is {entry}.</ToolTip>{present}'
                       f"<Value>{number}</Value></EnumEntry>")
        self.node("Enumeration", name, f"{inside}<pValue>{name}_Reg</pValue>{more}", category)
        self.say(f"enum {name} {value}")
        self.say(f"entries {name} {','.join(list(entries)[:-1] if bit else entries)}")

    def converted(self, name, category, raw, factor, high, unit, index=None, big=False):
        """A float whose register holds value * factor, in a bank of four when an index is given."""
        order = "<Endianess>BigEndian</Endianess>" if big else ""
        bank = f'<pIndex Offset="4">{index}</pIndex>' if index else ""
        address = self.register("IntReg", f"{name}_Reg", None, 4, f"<Sign>Signed</Sign>{order}{bank}",
                                places=4 if index else 1)
        for place in range(4 if index else 1):
            self.put(address + 4 * place, 4, raw + place, big)
        self.node("Integer", f"{name}_Raw", f"<pValue>{name}_Reg</pValue><Min>0</Min><Max>{high}</Max>")
        self.node("Converter", f"{name}_Conv",
                  f'<Constant Name="F">{factor}</Constant><FormulaTo>FROM * F</FormulaTo><FormulaFrom>TO / F'
                  f"</FormulaFrom><pValue>{name}_Raw</pValue><Slope>Increasing</Slope>")
        self.node("Float", name, f"<pValue>{name}_Conv</pValue><Unit>{unit}</Unit><DisplayNotation>Fixed"
                                 "</DisplayNotation><DisplayPrecision>2</DisplayPrecision>", category)
        self.say(f"float {name} {raw / factor!r}")
        self.say(f"fmin {name} 0.0")
        self.say(f"fmax {name} {high / factor!r}")
        return address

    def device(self):
        category = "DeviceControl"
        for name, text in (("DeviceVendorName", "Orvi"), ("DeviceModelName", self.name), ("DeviceSerialNumber", "4711")):
            address = self.register("StringReg", f"{name}_Reg", None, 32, mode="RO")
            self.say(f"put {address:#x} {text.encode().ljust(32, bytes(1)).hex()}")
            self.node("String", name, f"<pValue>{name}_Reg</pValue>", category)
            self.say(f"text {name} {text}")
            self.say(f"access {name} RO")
        address = self.register("FloatReg", "DeviceTemperature_Reg", 41.5, 4, "<PollingTime>1000</PollingTime>", "RO")
        self.node("Float", "DeviceTemperature", "<pValue>DeviceTemperature_Reg</pValue><Unit>C</Unit>", category)
        self.say("float DeviceTemperature 41.5")
        self.say("access DeviceTemperature RO")
        self.register("IntReg", "DeviceReset_Reg", 0, 4)
        self.node("Command", "DeviceReset", "<pValue>DeviceReset_Reg</pValue><CommandValue>1</CommandValue>", category)
        self.register("IntReg", "TLParamsLocked_Reg", 0, 4)
        self.node("Integer", "TLParamsLocked", "<pValue>TLParamsLocked_Reg</pValue><Min>0</Min><Max>1</Max>", category)

    def image(self):
        category, lock = "ImageFormatControl", "<pIsLocked>TLParamsLocked</pIsLocked>"
        for side, size in (("Width", 1920), ("Height", 1200)):
            offset = "OffsetX" if side == "Width" else "OffsetY"
            self.register("IntReg", f"Sensor{side}_Reg", size, 4, mode="RO")
            self.node("Integer", f"Sensor{side}", f"<pValue>Sensor{side}_Reg</pValue>", category)
            for name, other, value in ((side, offset, size // 2), (offset, side, 64)):
                self.register("IntReg", f"{name}_Reg", value, 4)
                self.node("IntSwissKnife", f"{name}_Max",
                          f'<pVariable Name="ALL">Sensor{side}</pVariable><pVariable Name="OTHER">{other}_Reg</pVariable>'
                          "<Formula>ALL - OTHER</Formula>")
                self.node("Integer", name, f"{lock}<pValue>{name}_Reg</pValue><Min>{0 if name == offset else 16}</Min>"
                                           f"<pMax>{name}_Max</pMax><Inc>4</Inc>", category)
            for name, other, value in ((side, 64, size // 2), (offset, size // 2, 64)):
                self.say(f"int {name} {value}")
                self.say(f"max {name} {size - other}")
        self.register("MaskedIntReg", "PixelFormatInq", 0, 4, "<Bit>0</Bit>", "RO")
        formats = {"Mono8": 0x01080001, "Mono10": 0x01100003, "Mono12": 0x01100005, "RGB8": 0x02180014}
        self.enumeration("PixelFormat", category, formats, "Mono12", lock, "PixelFormatInq")
        self.node("IntSwissKnife", "PayloadSize",
                  '<pVariable Name="W">Width</pVariable><pVariable Name="H">Height</pVariable>'
                  '<pVariable Name="PF">PixelFormat</pVariable><Expression Name="BITS">(PF &gt;&gt; 16) &amp; 0xFF'
                  "</Expression><Formula>W * H * BITS / 8</Formula>", category)
        self.say("int PayloadSize " + str(960 * 600 * 2))
        self.say("set PixelFormat Mono8")
        self.say("int PayloadSize " + str(960 * 600))
        self.say("refuse PixelFormat RGB8 ; not implemented")
        self.say("set Width 1856")
        self.say("refuse Width 1860 ; above the maximum 1856")
        self.say("refuse Width 1854 ; the step is 4")
        self.say("max OffsetX 64")
        self.say("set TLParamsLocked 1")
        self.say("access Width RO")
        self.say("refuse Width 640 ; is locked (TLParamsLocked is not 0)")
        self.say("set TLParamsLocked 0")
        self.say("access Width RW")

    def channel(self, n):
        ch, category, big = f"Channel{n}", f"Channel{n}Control", n % 2 == 1
        self.categories["Root"].append(category)
        settings = {"All": 0, "Red": 1, "Green": 2, "Blue": 3}
        self.enumeration(f"{ch}GainSelector", category, settings, "All", f"<pSelected>{ch}Gain</pSelected>")
        gain = self.converted(f"{ch}Gain", category, 250 + n, 100, 2400, "dB", f"{ch}GainSelector", big)
        self.converted(f"{ch}Delay", category, 1000 * n, 1000, 10000000, "us", None, big)
        self.integer(f"{ch}Threshold", category, 10 + n, 0, 255, more="<Representation>Linear</Representation>", big=big)
        self.integer(f"{ch}Period", category, 8 * n + 8, 8, 65536, 8, "<pIsLocked>TLParamsLocked</pIsLocked>")
        self.integer(f"{ch}Serial", category, (1 << 40) + n, 0, 1 << 62, size=8, big=big)
        status = self.place(4)
        bits = "".join(f'<StructEntry Name="{ch}Status{bit}"><Bit>{bit}</Bit></StructEntry>' for bit in range(4))
        self.nodes.append(f'  <StructReg Comment="{ch} status"><Address>{status:#x}</Address><Length>4</Length>'
                          f"<AccessMode>RW</AccessMode><pPort>Device</pPort><Endianess>LittleEndian</Endianess>{bits}"
                          "</StructReg>")
        self.put(status, 4, 0b0100 | n << 8)
        for bit, name in enumerate(("Enable", "Invert", "Ready", "Overflow")):
            self.node("Boolean", ch + name, f"<pValue>{ch}Status{bit}</pValue>", category)
            self.say(f"bool {ch}{name} {'true' if bit == 2 else 'false'}")
        self.register("IntReg", f"{ch}Start_Reg", 0, 4, mode="WO")
        self.node("Command", f"{ch}Start", f"<pIsAvailable>{ch}Ready</pIsAvailable><pValue>{ch}Start_Reg</pValue>"
                                           "<CommandValue>5</CommandValue>", category)
        self.node("SwissKnife", f"{ch}Load",
                  f'<pVariable Name="T">{ch}Threshold</pVariable><pVariable Name="P">{ch}Period</pVariable>'
                  '<Formula>(P &gt; 0) ? ROUND(T / P * 100, 1) : 0</Formula>', category)
        self.say(f"float {ch}Load {math.floor((10 + n) / (8 * n + 8) * 1000 + 0.5) / 10!r}")
        # What writing does: the bank of the selected colour, the bits beside a bit, the nearest raw value.
        self.say(f"set {ch}GainSelector Green")
        self.say(f"float {ch}Gain {(252 + n) / 100!r}")
        self.say(f"set {ch}Gain 0.29")
        self.say(f"mem {gain + 8:#x} {(29).to_bytes(4, 'big' if big else 'little').hex()}")
        self.say(f"refuse {ch}Gain 24.5 ; above the maximum 24")
        self.say(f"set {ch}Invert true")
        self.say(f"mem {status:#x} {(0b0110 | n << 8).to_bytes(4, 'little').hex()}")
        self.say(f"set {ch}Period 64")
        self.say(f"refuse {ch}Period 65 ; the step is 8")
        self.say(f"set {ch}Serial {(1 << 61) + 1}")
        self.say(f"int {ch}Serial {(1 << 61) + 1}")
        self.say(f"access {ch}Start WO")

    def write(self, folder):
        for name in ("DeviceControl", "ImageFormatControl"):
            self.categories["Root"].append(name)
        categories = [f'  <Category Name="{name}" NameSpace="Standard">'
                      + "".join(f"<pFeature>{feature}</pFeature>" for feature in features) + "</Category>"
                      for name, features in self.categories.items()]
        text = ('<?xml version="1.0" encoding="utf-8"?>\n'
                f'<RegisterDescription ModelName="{self.name}" VendorName="Orvi" ToolTip="{self.name}"\n'
                '    StandardNameSpace="None" SchemaMajorVersion="1" SchemaMinorVersion="1" SchemaSubMinorVersion="0"\n'
                '    MajorVersion="1" MinorVersion="0" SubMinorVersion="0"\n'
                '    ProductGuid="4D1A8E36-0C55-4F13-8D37-5B1F52C60A01" VersionGuid="7A1BB7B4-2F0C-46A2-9D0E-6F2D2C1B0A02"\n'
                '    xmlns="http://www.genicam.org/GenApi/Version_1_1">\n'
                + "\n".join(categories + self.nodes)
                + '\n  <Port Name="Device" NameSpace="Standard"/>\n</RegisterDescription>\n')
        (folder / f"{self.name}.xml").write_text(text)
        (folder / f"{self.name}.values").write_text("\n".join(self.script) + "\n")


def main():
    folder = pathlib.Path(sys.argv[1])
    folder.mkdir(parents=True, exist_ok=True)
    for name, channels, words in CAMERAS:
        camera = Camera(name, words)
        camera.device()
        camera.image()
        for n in range(channels):
            camera.channel(n)
        camera.write(folder)


main()
