#include "kvsim/SimOptions.h"

#include <charconv>
#include <cmath>

bool SimOptions::Parse(const std::vector<std::string>& Arguments, SimOptions& Options,
                       std::string& Error) {
    Options = SimOptions();
    for (size_t Index = 0; Index < Arguments.size(); ++Index) {
        const std::string& Argument = Arguments[Index];
        auto Next = [&](std::string& Value) {
            if (Index + 1 >= Arguments.size()) {
                Error = Argument + " needs a value";
                return false;
            }
            Value = Arguments[++Index];
            return true;
        };
        std::string Value;
        if (Argument == "--seconds") {
            if (!Next(Value)) return false;
            double Seconds = 0;
            const auto Parsed = std::from_chars(Value.data(), Value.data() + Value.size(), Seconds);
            if (Parsed.ec != std::errc() || Parsed.ptr != Value.data() + Value.size() ||
                !std::isfinite(Seconds) || Seconds < 0 || Seconds > 1e9) {
                Error = "--seconds takes a number of seconds, not \"" + Value + "\"";
                return false;
            }
            Options.Seconds = Seconds;
        } else if (Argument == "--expect" || Argument == "--fail") {
            if (!Next(Value)) return false;
            if (Value.empty()) {
                Error = Argument + " needs a text that is not empty";
                return false;
            }
            (Argument == "--expect" ? Options.ExpectTexts : Options.FailTexts).push_back(Value);
        } else if (Argument == "--real-time") {
            Options.RealTime = true;
        } else if (Argument == "--eeprom") {
            if (!Next(Options.EepromPath)) return false;
        } else if (Argument.starts_with("-") && Argument != "-") {
            Error = "unknown option " + Argument;
            return false;
        } else if (Options.ImagePath.empty()) {
            Options.ImagePath = Argument;
        } else {
            Error = "one image only: " + Argument;
            return false;
        }
    }
    if (Options.ImagePath.empty()) {
        Error = "no image given";
        return false;
    }
    return true;
}
