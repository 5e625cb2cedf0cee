#include <array>
#include <cstdint>

#include "norvane/platform/core/string/StringAlgorithm.h"

namespace norvane::platform::core::string {
namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// What a byte of the text stands for: six bits, something to pass over, or the end.
constexpr std::uint8_t kPassOver = 64;
constexpr std::uint8_t kEnd = 65;

constexpr std::array<std::uint8_t, 256> makeMeanings() {
    std::array<std::uint8_t, 256> meanings{};
    for (auto& each : meanings) each = kEnd;
    for (std::uint8_t value = 0; value < 64; ++value)
        meanings[static_cast<unsigned char>(kAlphabet[value])] = value;
    for (char each : {' ', '\t', '\r', '\n'}) meanings[static_cast<unsigned char>(each)] = kPassOver;
    return meanings;
}
constexpr std::array<std::uint8_t, 256> kMeanings = makeMeanings();

char letter(std::uint32_t bits, int shift) { return kAlphabet[(bits >> shift) & 63]; }

// One group of four characters for 1 to 3 bytes.
void encodeGroup(const std::uint8_t* in, std::size_t count, char* out) {
    const std::uint32_t bits = static_cast<std::uint32_t>(in[0]) << 16 |
                               (count > 1 ? static_cast<std::uint32_t>(in[1]) << 8 : 0u) |
                               (count > 2 ? in[2] : 0u);
    out[0] = letter(bits, 18);
    out[1] = letter(bits, 12);
    out[2] = count > 1 ? letter(bits, 6) : '=';
    out[3] = count > 2 ? letter(bits, 0) : '=';
}

}  // namespace

std::size_t StringAlgorithm::EncodeBase64(const void* in, std::size_t inSize, void* out,
                                          std::size_t outSize) {
    if (!out) return (inSize / 3 + (inSize % 3 != 0)) * 4;
    const auto* from = static_cast<const std::uint8_t*>(in);
    auto* to = static_cast<char*>(out);
    std::size_t written = 0;
    for (std::size_t done = 0; done < inSize && outSize - written >= 4; done += 3, written += 4)
        encodeGroup(from + done, inSize - done, to + written);
    return written;
}

std::size_t StringAlgorithm::DecodeBase64(const void* in, std::size_t inSize, void* out,
                                          std::size_t outSize) {
    const auto* from = static_cast<const std::uint8_t*>(in);
    auto* to = static_cast<std::uint8_t*>(out);
    std::uint32_t bits = 0;
    int bitCount = 0;
    std::size_t written = 0;
    for (const auto* end = from + inSize; from != end; ++from) {
        const std::uint8_t meaning = kMeanings[*from];
        if (meaning == kEnd) break;
        if (meaning == kPassOver) continue;
        bits = bits << 6 | meaning;
        bitCount += 6;
        if (bitCount < 8) continue;
        bitCount -= 8;
        if (to && written == outSize) break;
        if (to) to[written] = static_cast<std::uint8_t>(bits >> bitCount);
        ++written;
    }
    return written;
}

}  // namespace norvane::platform::core::string
