#pragma once

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <limits>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace description {

enum class Layout { inline_, lines };

/// Takes a text part by part.
using TextSink = std::function<void(std::string_view)>;

/// What stands between two members or elements on one line.
inline constexpr std::string_view inlineSeparator = ", ";

/// A member's name that needs no escapes, made ready to be written, behind another member or without what separates
/// them.
class PlainName {
public:
    explicit constexpr PlainName(std::string_view name) : size(inlineSeparator.size() + name.size() + 4) {
        auto at = std::ranges::copy(inlineSeparator, characters.begin()).out;
        *at++ = '"';
        at = std::ranges::copy(name, at).out;
        std::ranges::copy(std::string_view("\": "), at);
        static_cast<void>(characters.at(size + inlineSeparator.size() - 1)); // a longer name does not compile
    }

    static constexpr std::size_t most = 40; // characters, of which all are copied: that is faster than what it needs

    /// Returns how many characters of the copy are the name's.
    std::size_t copyTo(char *text, bool isBehindAnother) const {
        const std::size_t from = isBehindAnother ? 0 : inlineSeparator.size();
        std::memcpy(text, characters.data() + from, most);
        return size - from;
    }

private:
    std::array<char, most + inlineSeparator.size()> characters{};
    std::size_t size;
};

/// Writes one JSON document from its start to its end. An object or list stands on one line, or has a line for each of
/// its members or elements.
class JsonWriter {
public:
    explicit JsonWriter(TextSink textSink) : sink(std::move(textSink)) {
    }

    void beginObject(Layout layout = Layout::inline_) {
        begin('{', layout);
    }
    void endObject() {
        end('}');
    }
    void beginList(Layout layout = Layout::inline_) {
        begin('[', layout);
    }
    void endList() {
        end(']');
    }

    /// Of the member whose value comes next: a text that `isText` takes.
    void name(std::string_view text);

    /// The same of a name that was made ready.
    void name(const PlainName &text) {
        bool isBehindAnother = false;
        if (level.layout == Layout::lines) {
            separate();
        } else {
            isBehindAnother = !std::exchange(level.isEmpty, false);
        }
        makeRoom(PlainName::most);
        used += text.copyTo(buffer.data() + used, isBehindAnother);
        isNamed = true;
    }

    /// A string, or {"hex": ...} of what is no UTF-8 text.
    void text(std::string_view bytes);

    /// A string of two-digit hexadecimal numbers, which a blank separates.
    void hexBytes(std::span<const unsigned char> bytes);

    /// A string of such numbers without blanks.
    void hexDigits(std::span<const unsigned char> bytes);

    template <class Number>
    void number(Number value) {
        separate();
        makeRoom(std::numeric_limits<Number>::digits10 + 2);
        char *const end = buffer.data() + buffer.size();
        used = static_cast<std::size_t>(std::to_chars(buffer.data() + used, end, value).ptr - buffer.data());
    }

    void null() {
        separate();
        put(std::string_view("null"));
    }

    /// Hands over what is left of the document.
    void finish() {
        put('\n');
        flush();
    }

    /// Whether a name or string can be made of the bytes as they are.
    static bool isText(std::string_view bytes);

private:
    struct Level {
        Layout layout;
        bool isEmpty;
    };

    void begin(char bracket, Layout layout);
    void end(char bracket);
    void separateFromLast();
    void newLine();
    void hex(std::span<const unsigned char> bytes, bool isSpaced);

    /// Before a member or an element.
    void separate() {
        if (isNamed) {
            isNamed = false;
        } else {
            separateFromLast();
        }
    }

    /// For so many characters to come, far fewer than the buffer holds.
    void makeRoom(std::size_t characters) {
        if (characters > buffer.size() - used) [[unlikely]] {
            flush();
        }
    }

    /// Adds to the document. A part is a text or a character.
    template <class... Parts>
    void put(const Parts &...parts) {
        const std::size_t size = (sizeOf(parts) + ...);
        if (size > buffer.size() - used) [[unlikely]] {
            putBeyondBuffer({viewOf(parts)...});
            return;
        }
        (copy(parts), ...);
    }

    void putBeyondBuffer(std::initializer_list<std::string_view> parts);

    static std::size_t sizeOf(std::string_view text) {
        return text.size();
    }
    static std::size_t sizeOf(char) {
        return 1;
    }
    static std::string_view viewOf(std::string_view text) {
        return text;
    }
    static std::string_view viewOf(const char &character) {
        return {&character, 1};
    }
    void copy(std::string_view text) {
        std::memcpy(buffer.data() + used, text.data(), text.size());
        used += text.size();
    }
    void copy(char character) {
        buffer[used++] = character;
    }

    void flush() {
        sink({buffer.data(), used});
        used = 0;
    }

    TextSink sink;
    std::array<char, 65536> buffer;
    std::size_t used = 0;
    Level level = {Layout::inline_, true}; // at first, around the document
    std::vector<Level> outerLevels;
    std::size_t indentation = 0;
    bool isNamed = false; // the value that comes next
};

} // namespace description
