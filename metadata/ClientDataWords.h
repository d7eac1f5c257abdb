// Helpers shared by the client data classes: how their fields turn into the
// 64-bit words of a host client data block and back.
//
// Every scalar takes one word, widened to 64 bits; a boolean is 0 or 1. A
// reader checks that a word fits the field it fills, so that a damaged block
// raises IOException instead of filling a record with nonsense.
#pragma once

#include <cstdint>
#include <limits>
#include <string>

#include "host/Metadata.h"

namespace zorvane {
namespace zorutildataio {

// The next word of the block as a 32-bit integer. Throws IOException when it
// does not fit, or past the end of the block.
inline int32_t getInt32Word(dataio::ClientDataBlock& block) {
    const int64_t word = block.getWord();
    if (word < std::numeric_limits<int32_t>::min() || word > std::numeric_limits<int32_t>::max())
        throw dataio::IOException("client data word out of range: " + std::to_string(word));
    return static_cast<int32_t>(word);
}

// The next word as a boolean (0 or 1).
inline bool getBoolWord(dataio::ClientDataBlock& block) {
    const int64_t word = block.getWord();
    if (word != 0 && word != 1)
        throw dataio::IOException("client data word is not a boolean: " + std::to_string(word));
    return word == 1;
}

// The next word as a count of records of wordsPerRecord words each; throws
// IOException for a negative count or one that the block cannot hold.
inline size_t getCountWord(dataio::ClientDataBlock& block, size_t wordsPerRecord) {
    const int64_t count = block.getWord();
    if (count < 0 || static_cast<uint64_t>(count) * wordsPerRecord > block.words().size())
        throw dataio::IOException("bad record count in a client data block: " + std::to_string(count));
    return static_cast<size_t>(count);
}

// A double kept in one word, bit for bit.
inline int64_t doubleToWord(double value) {
    int64_t word;
    static_assert(sizeof word == sizeof value, "a double is one word");
    __builtin_memcpy(&word, &value, sizeof word);
    return word;
}

inline double wordToDouble(int64_t word) {
    double value;
    __builtin_memcpy(&value, &word, sizeof value);
    return value;
}

// Throws IOException unless the reader used every word of the block.
inline void expectBlockEnd(const dataio::ClientDataBlock& block, const char* what) {
    if (!block.atEnd())
        throw dataio::IOException(std::string("client data block of ") + what + " is longer than expected");
}

}  // namespace zorutildataio
}  // namespace zorvane
