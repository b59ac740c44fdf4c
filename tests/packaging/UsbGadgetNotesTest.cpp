// The notes on the USB gadget, of which the system image is made: their descriptor describes the reports that
// the process sends and takes, and the bytes that the shell writes are those of the table.
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<unsigned>;

std::string notes() {
    std::ifstream file(TARVEK_SOURCE "/docs/usb_gadget.md");
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

// Between two texts, the first time that they come.
std::string between(const std::string& text, const std::string& begin, const std::string& end) {
    const std::size_t from = text.find(begin);
    EXPECT_NE(from, std::string::npos) << begin;
    const std::size_t start = from + begin.size();
    return text.substr(start, text.find(end, start) - start);
}

// Of the table: the hexadecimal columns, nine characters wide.
Bytes tableBytes() {
    Bytes bytes;
    std::istringstream lines(between(notes(), "```hid\n", "```"));
    for (std::string line; std::getline(lines, line);) {
        std::istringstream columns(line.substr(0, 9));
        for (std::string byte; columns >> byte;)
            bytes.push_back(static_cast<unsigned>(std::stoul(byte, nullptr, 16)));
    }
    return bytes;
}

// Of the shell's line: octal escapes.
Bytes shellBytes() {
    Bytes bytes;
    std::istringstream escapes(between(notes(), "printf '\\", "'"));
    for (std::string byte; std::getline(escapes, byte, '\\');)
        bytes.push_back(static_cast<unsigned>(std::stoul(byte, nullptr, 8)));
    return bytes;
}

// What a descriptor of short items says (HID 1.11, section 6.2.2.2): an item is a tag with the size of its
// data in the two lowest bits, and the data, the low byte first.
struct Described {
    std::map<unsigned, unsigned> globals;  // by tag
    std::map<std::string, unsigned> bits;  // of the input and of the output report
    unsigned collections = 0, openCollections = 0;
};

Described parse(const Bytes& bytes) {
    constexpr unsigned kInput = 0x80, kOutput = 0x90, kCollection = 0xa0, kEndCollection = 0xc0;
    constexpr unsigned kReportSize = 0x74, kReportCount = 0x94;
    Described found;
    for (std::size_t i = 0; i < bytes.size();) {
        const unsigned tag = bytes[i] & ~3u;
        const std::size_t size = (bytes[i] & 3) == 3 ? 4 : bytes[i] & 3;
        unsigned value = 0;
        for (std::size_t byte = 0; byte < size; ++byte)
            value |= bytes.at(i + 1 + byte) << 8 * byte;
        i += 1 + size;
        const unsigned reportBits = found.globals[kReportSize] * found.globals[kReportCount];
        if (tag == kInput) found.bits["input"] += reportBits;
        if (tag == kOutput) found.bits["output"] += reportBits;
        if (tag == kCollection) ++found.collections, ++found.openCollections;
        if (tag == kEndCollection) --found.openCollections;
        if ((tag & 0x0c) == 0x04) found.globals[tag] = value;
    }
    return found;
}

}  // namespace

TEST(UsbGadgetNotes, DescribeAnInputAndAnOutputReportOf64BytesWithoutANumber) {
    constexpr unsigned kUsagePage = 0x04, kReportId = 0x84;
    Described found = parse(tableBytes());
    EXPECT_EQ(found.bits["input"], 64u * 8u);
    EXPECT_EQ(found.bits["output"], 64u * 8u);
    EXPECT_GE(found.globals[kUsagePage], 0xff00u);  // vendor-defined
    EXPECT_EQ(found.globals.count(kReportId), 0u);
    EXPECT_EQ(found.collections, 1u);
    EXPECT_EQ(found.openCollections, 0u);
}

TEST(UsbGadgetNotes, LetTheShellWriteTheBytesOfTheTable) {
    EXPECT_EQ(shellBytes(), tableBytes());
    EXPECT_EQ(tableBytes().size(), 25u);
    EXPECT_NE(notes().find("echo 64 > \"$gadget/functions/hid.usb0/report_length\""), std::string::npos);
}
