// The smallest media file.
#pragma once

#include <string>

namespace vornak::test {

/// 0.01 s of silence.
inline std::string smallWav()
{
    std::string wav("RIFF\xa4\x03\0\0WAVEfmt \x10\0\0\0\x01\0\x01\0\x80\xbb\0\0\0\x77\x01\0\x02\0"
                    "\x10\0data\x80\x03\0\0",
                    44);
    return wav.append(0x380, '\0');
}

} // namespace vornak::test
