// The default voice file.
#pragma once

#include <string>

namespace host {

// A short two-tone chime: RIFF/WAVE, 16-bit PCM, mono, 8000 samples a second.
std::string defaultVoiceFile();

}  // namespace host
