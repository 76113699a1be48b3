// SPDX-License-Identifier: MIT
// Reading a camera parameter file.

#include "parameterfile.h"

#include "failure.h"
#include "opencamera.h"

#include <filesystem>
#include <fstream>
#include <limits>
#include <locale>
#include <sstream>

namespace kelvosim {

namespace {

constexpr std::uintmax_t LargestFile = 1 << 20;
constexpr double LowestFrameRate = std::numeric_limits<double>::min(); // above 0
constexpr double Highest = std::numeric_limits<double>::max();
constexpr double LongestExposure = OpenCamera::QueryCurrent - 1; // milliseconds; from there on queries begin

std::string trimmed(const std::string &text)
{
    const char *const blanks = " \t\r";
    const std::size_t begin = text.find_first_not_of(blanks);
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

template<class Number>
Number number(const std::string &text)
{
    std::istringstream in(text);
    in.imbue(std::locale::classic());
    Number value{};
    in >> value;
    if (in.fail() || !(in >> std::ws).eof())
        throw Failure(DamagedFile, "The parameter file holds something that is no number.");
    return value;
}

/// Looks at the kind of file before it opens it: opening a pipe would wait for its writer.
std::ifstream opened(const std::string &path)
{
    std::error_code error;
    std::ifstream in;
    if (std::filesystem::is_regular_file(path, error))
        in.open(path);
    if (!in.is_open())
        throw Failure(CannotOpenFile, "Can't open the parameter file.");
    if (std::filesystem::file_size(path, error) > LargestFile)
        throw Failure(DamagedFile, "The parameter file is too long.");
    return in;
}

/// @throws Failure when the value lies outside, so that a file is applied whole or not at all
template<class Number>
Number between(Number lowest, Number highest, const std::string &text)
{
    const Number value = number<Number>(text);
    if (!(value >= lowest && value <= highest))
        throw Failure(DamagedFile, "The parameter file holds a value that is not possible.");
    return value;
}

std::int32_t gain(const std::string &text)
{
    return between(0, OpenCamera::HighestGain, text);
}

void set(Parameters &parameters, const std::string &key, const std::string &value)
{
    if (key == "pixel clock")
        parameters.pixelClock = between(Timing::SlowestPixelClock, Timing::FastestPixelClock, value);
    else if (key == "frame rate")
        parameters.frameRate = between(LowestFrameRate, Highest, value);
    else if (key == "exposure")
        parameters.exposure = between(0.0, LongestExposure, value);
    else if (key == "gain")
        parameters.masterGain = gain(value);
    else if (key == "red gain")
        parameters.colourGains[0] = gain(value);
    else if (key == "green gain")
        parameters.colourGains[1] = gain(value);
    else if (key == "blue gain")
        parameters.colourGains[2] = gain(value);
    else
        throw Failure(DamagedFile, "The parameter file holds an unknown key.");
}

} // namespace

Parameters readParameterFile(const std::string &path)
{
    std::ifstream in = opened(path);
    Parameters parameters;
    for (std::string line; std::getline(in, line);) {
        line = trimmed(line.substr(0, line.find_first_of("#;")));
        if (line.empty() || line.front() == '[')
            continue;
        const std::size_t equals = line.find('=');
        if (equals == std::string::npos)
            throw Failure(DamagedFile, "The parameter file holds a line without a value.");
        set(parameters, trimmed(line.substr(0, equals)), trimmed(line.substr(equals + 1)));
    }
    return parameters;
}

} // namespace kelvosim
