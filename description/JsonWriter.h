#pragma once

#include <array>
#include <charconv>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace description {

enum class Layout { inline_, lines };

/// Writes one JSON document from its start to its end. An object or list stands on one line, or has a line for each of
/// its members or elements.
class JsonWriter {
public:
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

    /// A string, or {"hex": ...} of what is no UTF-8 text.
    void text(std::string_view bytes);

    /// A string of two-digit hexadecimal numbers, which a blank separates.
    void hexBytes(std::span<const unsigned char> bytes);

    /// A string of such numbers without blanks.
    void hexDigits(std::span<const unsigned char> bytes);

    template <class Number>
    void number(Number value) {
        separate();
        std::array<char, 24> digits;
        const auto [last, error] = std::to_chars(digits.data(), digits.data() + digits.size(), value);
        json.append(digits.data(), last);
    }

    void null() {
        separate();
        json += "null";
    }

    /// The document.
    std::string take() {
        json += '\n';
        return std::move(json);
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
    void separate();
    void newLine();
    void quote(std::string_view text);

    std::string json;
    std::vector<Level> levels;
    std::size_t indentation = 0;
    bool isNamed = false; // the value that comes next
};

} // namespace description
