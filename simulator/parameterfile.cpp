// SPDX-License-Identifier: MIT
// Reading a camera parameter file.

#include "parameterfile.h"

#include "failure.h"

#include <fstream>
#include <locale>
#include <sstream>

namespace kelvosim {

namespace {

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

void set(Parameters &parameters, const std::string &key, const std::string &value)
{
    if (key == "pixel clock")
        parameters.pixelClock = number<std::int32_t>(value);
    else if (key == "frame rate")
        parameters.frameRate = number<double>(value);
    else if (key == "exposure")
        parameters.exposure = number<double>(value);
    else if (key == "gain")
        parameters.masterGain = number<std::int32_t>(value);
    else if (key == "red gain")
        parameters.colourGains[0] = number<std::int32_t>(value);
    else if (key == "green gain")
        parameters.colourGains[1] = number<std::int32_t>(value);
    else if (key == "blue gain")
        parameters.colourGains[2] = number<std::int32_t>(value);
    else
        throw Failure(DamagedFile, "The parameter file holds an unknown key.");
}

} // namespace

Parameters readParameterFile(const std::string &path)
{
    std::ifstream in(path);
    if (!in)
        throw Failure(CannotOpenFile, "Can't open the parameter file.");
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
