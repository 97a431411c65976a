#include "host/voiceFile.h"

#include <cmath>
#include <cstdint>
#include <numbers>

namespace host {

namespace {

constexpr std::uint32_t samplesPerSecond = 8000;
constexpr std::uint32_t toneLength = samplesPerSecond * 2 / 5;
constexpr double loudness = 9000;  // of 32767

void append(std::string& bytes, std::uint32_t number, int size) {
    for (int i = 0; i < size; ++i)
        bytes += static_cast<char>(number >> (8 * i) & 0xFF);
}

// A tone that dies away.
void appendTone(std::string& bytes, double frequency) {
    for (std::uint32_t i = 0; i < toneLength; ++i) {
        const double time = static_cast<double>(i) / samplesPerSecond;
        const double fading = 1 - static_cast<double>(i) / toneLength;
        const double sample = loudness * fading * std::sin(2 * std::numbers::pi * frequency * time);
        append(bytes, static_cast<std::uint16_t>(static_cast<std::int16_t>(sample)), 2);
    }
}

}  // namespace

std::string defaultVoiceFile() {
    std::string samples;
    for (const double frequency : {880.0, 659.3})
        appendTone(samples, frequency);
    std::string file = "RIFF";
    append(file, static_cast<std::uint32_t>(36 + samples.size()), 4);
    file += "WAVEfmt ";
    append(file, 16, 4);  // size of the format
    append(file, 1, 2);   // PCM
    append(file, 1, 2);   // channels
    append(file, samplesPerSecond, 4);
    append(file, samplesPerSecond * 2, 4);  // bytes a second
    append(file, 2, 2);                     // bytes a sample
    append(file, 16, 2);                    // bits a sample
    file += "data";
    append(file, static_cast<std::uint32_t>(samples.size()), 4);
    return file + samples;
}

}  // namespace host
