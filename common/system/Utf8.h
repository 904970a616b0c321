#pragma once

#include <optional>
#include <string>
#include <string_view>

// The JNI's text is modified UTF-8: a character beyond the first plane is the two halves of its UTF-16 pair there, three
// bytes each, and not the four bytes that UTF-8 has for it. All other characters but NUL are the same in both.

namespace tarn {

/// The modified form of a text that is valid UTF-8 and differs from it. Nothing for every other text: it is to be passed on
/// as it stands.
std::optional<std::string> toModifiedUtf8(std::string_view text);

/// The UTF-8 of a text in the modified form that differs from it; nothing for every other text. A half of a pair that
/// stands alone stays as it is.
std::optional<std::string> fromModifiedUtf8(std::string_view text);

} // namespace tarn
