#pragma once

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <functional>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace description {

enum class Layout { inline_, lines };

/// `"name": ` of an identifier of that length, which needs no look.
template <std::size_t length>
constexpr std::array<char, length + 4> quotedName(std::string_view name) {
    std::array<char, length + 4> quoted{'"'};
    std::ranges::copy(name, quoted.begin() + 1);
    std::ranges::copy(std::string_view("\": "), quoted.end() - 3);
    return quoted;
}

/// Takes a text part by part.
using TextSink = std::function<void(std::string_view)>;

/// Writes one JSON document from its start to its end. An object or list stands on one line, or has a line for each of
/// its members or elements: the JSON library knows the one or the other for a whole document only, and keeps it until it
/// is written, at five times the size of its text.
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

    /// Likewise an identifier, as `quotedName` has it: of a large host's text half is the names of its members.
    void identifier(std::string_view quoted);

    /// A string, or {"hex": ...} of what is no UTF-8 text.
    void text(std::string_view bytes);

    /// A string of two-digit hexadecimal numbers, with `separator` in between.
    void hexBytes(std::span<const unsigned char> bytes, std::string_view separator = " ");

    template <class Number>
    void number(Number value) {
        separate();
        char digits[std::numeric_limits<Number>::digits10 + 2];
        put(std::string_view(digits, std::to_chars(std::begin(digits), std::end(digits), value).ptr));
    }

    void null() {
        separate();
        put("null");
    }

    /// Hands over what is left of the document.
    void finish() {
        put('\n');
        handOver();
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
    void newLine();

    /// Before a member or an element.
    void separate();

    void quote(std::string_view plain);

    // Ten small pieces make a member, so they go into a part of fixed size: appended to a string they take twice the time.

    void put(char character) {
        put(std::string_view(&character, 1));
    }
    void put(std::string_view piece) {
        if (piece.size() > part.size() - used) {
            putBeyond(piece);
            return;
        }
        std::memcpy(part.data() + used, piece.data(), piece.size());
        used += piece.size();
    }
    void putBeyond(std::string_view piece); // what the part has no room for
    void handOver();

    TextSink sink;
    std::array<char, 65536> part;
    std::size_t used = 0;                                  // of the part: what is not handed over
    std::vector<Level> levels = {{Layout::inline_, true}}; // the outermost is around the document
    std::size_t indentation = 0;
    bool isNamed = false; // the value that comes next
};

} // namespace description
