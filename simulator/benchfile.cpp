// SPDX-License-Identifier: MIT
// Reading and editing the text of a bench file.

#include "benchfile.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <set>

namespace benchfile {

namespace {

constexpr std::uint32_t LongestSerial = 11;
constexpr std::uint32_t LongestModel = 79;
constexpr std::uint32_t SmallestSide = 16;
constexpr std::uint32_t LargestSide = 16384;
constexpr std::uint32_t LargestCapacity = 16000;
constexpr std::uint32_t MostHotPixels = 1500;
constexpr std::uint32_t LongestUpload = 600000;

/// What is wrong with a value; the caller knows the line.
struct BadValue
{
    std::string text;
};

struct Range
{
    std::size_t begin = 0;
    std::size_t end = 0;
};

std::string trimmed(const std::string &text)
{
    const auto blank = [](unsigned char c) { return std::isspace(c) != 0; };
    const auto begin = std::find_if_not(text.begin(), text.end(), blank);
    const auto end = std::find_if_not(text.rbegin(), text.rend(), blank).base();
    return begin < end ? std::string(begin, end) : std::string();
}

std::string withoutComment(const std::string &line)
{
    return line.substr(0, line.find('#'));
}

/// One line and where it stands in the text, its end mark excluded.
struct Line
{
    Range at;
    std::size_t next = 0; ///< where the next line begins
    std::string content;  ///< trimmed, without comment
};

Line lineAt(const std::string &text, std::size_t begin)
{
    Line line;
    const std::size_t feed = text.find('\n', begin);
    line.at = {begin, feed == std::string::npos ? text.size() : feed};
    line.next = feed == std::string::npos ? text.size() : feed + 1;
    if (line.at.end > begin && text[line.at.end - 1] == '\r')
        --line.at.end;
    line.content = trimmed(withoutComment(text.substr(begin, line.at.end - begin)));
    return line;
}

/// The serial number of a "[camera ...]" line; nothing when the line is no such section.
bool isSection(const std::string &content, std::string *serial)
{
    static const char Start[] = "[camera";
    constexpr std::size_t length = sizeof Start - 1;
    if (content.compare(0, length, Start) != 0 || content.back() != ']' || content.size() < length + 2)
        return false;
    if (!std::isspace(static_cast<unsigned char>(content[length])))
        return false;
    *serial = trimmed(content.substr(length, content.size() - length - 1));
    return true;
}

std::string keyOf(const std::string &content)
{
    const std::size_t equals = content.find('=');
    return equals == std::string::npos ? std::string() : trimmed(content.substr(0, equals));
}

std::uint64_t number(const std::string &value, std::uint64_t most)
{
    const bool hexadecimal = value.compare(0, 2, "0x") == 0;
    std::uint64_t result = 0;
    const std::string digits = hexadecimal ? value.substr(2) : value;
    if (digits.empty())
        throw BadValue{"a number is missing"};
    for (const char digit : digits) {
        const auto c = static_cast<unsigned char>(digit);
        if (!(hexadecimal ? std::isxdigit(c) : std::isdigit(c)))
            throw BadValue{"\"" + value + "\" is no number"};
        const auto worth = static_cast<std::uint64_t>(std::isdigit(c) ? c - '0' : std::tolower(c) - 'a' + 10);
        const std::uint64_t base = hexadecimal ? 16 : 10;
        if (worth > most || result > (most - worth) / base)
            throw BadValue{"\"" + value + "\" is too large"};
        result = result * base + worth;
    }
    return result;
}

std::uint32_t smallNumber(const std::string &value, std::uint32_t most)
{
    return static_cast<std::uint32_t>(number(value, most));
}

bool yesOrNo(const std::string &value)
{
    if (value == "yes" || value == "on")
        return true;
    if (value == "no" || value == "off")
        return false;
    throw BadValue{"\"" + value + "\" is neither yes nor no (on nor off)"};
}

kelvosim::SensorKind kind(const std::string &value)
{
    if (value == "mono")
        return kelvosim::SensorKind::Mono;
    if (value == "bayer")
        return kelvosim::SensorKind::RawBayer;
    if (value == "colour")
        return kelvosim::SensorKind::Colour32;
    throw BadValue{"\"" + value + "\" is none of mono, bayer, colour"};
}

std::int32_t side(const std::string &value)
{
    const std::uint32_t length = smallNumber(value, LargestSide);
    if (length < SmallestSide)
        throw BadValue{"a side must have " + std::to_string(SmallestSide) + " pixels or more"};
    return static_cast<std::int32_t>(length);
}

void setSize(kelvosim::CameraSpec &spec, const std::string &value)
{
    const std::size_t cross = value.find_first_of("xX");
    if (cross == std::string::npos)
        throw BadValue{"a size reads \"1280 x 1024\""};
    spec.width = side(trimmed(value.substr(0, cross)));
    spec.height = side(trimmed(value.substr(cross + 1)));
}

int uploadTime(const std::string &value)
{
    if (value == "no")
        return 0;
    const std::size_t unit = value.find_first_of(" ms");
    if (unit == std::string::npos)
        throw BadValue{"a firmware upload reads \"no\", \"5 s\" or \"800 ms\""};
    const std::string unitText = trimmed(value.substr(unit));
    if (unitText != "s" && unitText != "ms")
        throw BadValue{"\"" + unitText + "\" is neither s nor ms"};
    const std::uint32_t factor = unitText == "s" ? 1000 : 1;
    return static_cast<int>(smallNumber(value.substr(0, unit), LongestUpload / factor) * factor);
}

std::string model(const std::string &value)
{
    if (value.size() > LongestModel)
        throw BadValue{"a model name has at most " + std::to_string(LongestModel) + " characters"};
    return value;
}

using Setter = void (*)(Camera &, const std::string &);

const std::map<std::string, Setter> &setters()
{
    static const auto *table = new std::map<std::string, Setter>{
        {"model", [](Camera &c, const std::string &v) { c.spec.model = model(v); }},
        {"kind", [](Camera &c, const std::string &v) { c.spec.kind = kind(v); }},
        {"size", [](Camera &c, const std::string &v) { setSize(c.spec, v); }},
        {"attached", [](Camera &c, const std::string &v) { c.spec.attached = yesOrNo(v); }},
        {"lens cap", [](Camera &c, const std::string &v) { c.spec.lensCap = yesOrNo(v); }},
        {"in use", [](Camera &c, const std::string &v) { c.spec.usedElsewhere = yesOrNo(v); }},
        {"firmware upload", [](Camera &c, const std::string &v) { c.spec.firmwareUpload = uploadTime(v); }},
        {"replay", [](Camera &c, const std::string &v) { c.spec.replayFolder = v; }},
        {"seed", [](Camera &c, const std::string &v) { c.spec.seed = number(v, UINT64_MAX); }},
        {"storage", [](Camera &c, const std::string &v) { c.spec.storesLists = yesOrNo(v); }},
        {"capacity",
         [](Camera &c, const std::string &v) { c.spec.capacity = smallNumber(v, LargestCapacity); }},
        {"hot pixels",
         [](Camera &c,
            const std::string &v) { c.spec.hotPixels = static_cast<int>(smallNumber(v, MostHotPixels)); }},
        {"sensor",
         [](Camera &c,
            const std::string &v) { c.spec.sensorId = static_cast<std::uint16_t>(number(v, 0xFFFF)); }},
        {"failed frames",
         [](Camera &c, const std::string &v) { c.failedFrames = smallNumber(v, UINT32_MAX); }},
        {"list resets", [](Camera &c, const std::string &v) { c.listResets = smallNumber(v, UINT32_MAX); }},
    };
    return *table;
}

/// Takes in line after line.
class Parser
{
public:
    void take(const std::string &content, int line);
    std::vector<Camera> cameras;

private:
    void beginCamera(const std::string &serial, int line);
    void setKey(const std::string &content, int line);

    std::set<std::string> serials;
    std::set<std::string> keys; ///< that the present section has had
};

void Parser::take(const std::string &content, int line)
{
    std::string serial;
    if (content.empty())
        return;
    if (isSection(content, &serial))
        beginCamera(serial, line);
    else if (content.front() == '[')
        throw Error(line, "a section reads \"[camera KV00001280]\"");
    else
        setKey(content, line);
}

void Parser::beginCamera(const std::string &serial, int line)
{
    const auto printable = [](unsigned char c) { return std::isgraph(c) != 0; };
    if (serial.empty() || serial.size() > LongestSerial ||
        !std::all_of(serial.begin(), serial.end(), printable))
        throw Error(line, "a serial number has 1 to 11 printable characters");
    if (!serials.insert(serial).second)
        throw Error(line, "the serial number " + serial + " is there twice");
    keys.clear();
    Camera camera;
    camera.spec.serial = serial;
    cameras.push_back(camera);
}

void Parser::setKey(const std::string &content, int line)
{
    const std::string key = keyOf(content);
    if (key.empty())
        throw Error(line, "a line reads \"key = value\"");
    if (cameras.empty())
        throw Error(line, "\"" + key + "\" stands before the first camera");
    const auto setter = setters().find(key);
    if (setter == setters().end())
        throw Error(line, "there is no key \"" + key + "\"");
    if (!keys.insert(key).second)
        throw Error(line, "\"" + key + "\" is there twice");
    try {
        setter->second(cameras.back(), trimmed(content.substr(content.find('=') + 1)));
    } catch (const BadValue &bad) {
        throw Error(line, key + ": " + bad.text);
    }
}

/// Where the value of a "key = value  # comment" line stands.
Range valueIn(const std::string &text, const Line &line)
{
    const auto blankAt = [&](std::size_t at) {
        return std::isspace(static_cast<unsigned char>(text[at])) != 0;
    };
    Range value;
    value.end = std::min(text.find('#', line.at.begin), line.at.end);
    value.begin = text.find('=', line.at.begin) + 1;
    while (value.end > value.begin && blankAt(value.end - 1))
        --value.end;
    while (value.begin < value.end && blankAt(value.begin))
        ++value.begin;
    return value;
}

std::string withValue(const std::string &text, const Line &line, const std::string &value)
{
    const Range old = valueIn(text, line);
    const bool tight = text[old.begin - 1] == '=' && old.begin == old.end;
    return text.substr(0, old.begin) + (tight ? " " : "") + value + text.substr(old.end);
}

std::string withLine(const std::string &text, const Line &after, const std::string &added)
{
    const std::string feed = text.find("\r\n") == std::string::npos ? "\n" : "\r\n";
    const bool endless = text[after.next - 1] != '\n'; // a carriage return alone ends no line
    return text.substr(0, after.next) + (endless ? feed : "") + added + feed + text.substr(after.next);
}

} // namespace

Error::Error(int line, const std::string &text)
    : std::runtime_error("line " + std::to_string(line) + ": " + text)
    , number(line)
{
}

std::vector<Camera> parse(const std::string &text)
{
    Parser parser;
    int count = 0;
    for (std::size_t at = 0; at < text.size();) {
        const Line line = lineAt(text, at);
        parser.take(line.content, ++count);
        at = line.next;
    }
    return parser.cameras;
}

std::string setValue(const std::string &text, const std::string &serial, const std::string &key,
                     const std::string &value)
{
    bool inside = false;
    Line last; // line with content in the camera's section
    for (std::size_t at = 0; at < text.size();) {
        const Line line = lineAt(text, at);
        at = line.next;
        std::string found;
        if (isSection(line.content, &found)) {
            if (inside)
                break;
            inside = found == serial;
        }
        if (inside && keyOf(line.content) == key)
            return withValue(text, line, value);
        if (inside && !line.content.empty())
            last = line;
    }
    if (last.content.empty())
        throw std::invalid_argument("There is no camera " + serial + " in the bench file.");
    return withLine(text, last, key + " = " + value);
}

} // namespace benchfile
