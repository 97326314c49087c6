// The cards of a NASTRAN deck, one at a time, whatever their field form: small (8 columns),
// large (16 columns, the name ending in "*"), free (commas), with their continuation lines and
// the decks they INCLUDE.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qv7 {
namespace tessarium {

// One card: its name in upper case without the large-field star, and its fields 1, 2, ... over
// all its lines (8 per small-field line, 4 per large-field line; continuation marks left out).
struct __nastran_card {
    std::string name;
    std::vector<std::string_view> fields;  // into the deck's text, or into `expanded`
    std::deque<std::string> expanded;      // lines with tabs, taken to columns
    std::size_t line = 0;                  // of the first line
    std::size_t start = 0;                 // offset of the first line in its deck
    std::string const* file = nullptr;     // the deck's path

    // Field k (from 1), blanks kept; empty past the last one.
    std::string_view field(std::size_t k) const noexcept
    {
        return k == 0 || k > fields.size() ? std::string_view() : fields[k - 1];
    }
};

class __nastran_deck {
public:
    // The deck in text, read from "BEGIN BULK" on when it has such a line, else whole.
    __nastran_deck(std::string path, std::string text);

    // The next card; false at the end of every deck or at ENDDATA.
    bool next(__nastran_card& card);

    // Reads the INCLUDE card just returned: the file named after it, relative to the folder of
    // the deck that names it, is read before the rest. False (with why) when it cannot be.
    bool include(__nastran_card const& card, std::string& why);

    // Continuation lines found with no card before them.
    std::size_t stray_continuations() const noexcept { return stray_; }

private:
    struct deck {
        std::string const* path;
        std::string text;
        std::size_t at = 0, line = 0;
    };
    struct line {
        std::string_view text;
        std::size_t start = 0, number = 0;
    };
    bool next_line(line& l, bool same_deck);
    void add_fields(line const& l, bool first, __nastran_card& card);

    std::vector<std::unique_ptr<deck>> open_;
    std::deque<std::string> paths_;  // of every deck opened, for the cards that name them
    line pending_;
    bool has_pending_ = false;
    std::size_t stray_ = 0;
};

}  // namespace tessarium
}  // namespace qv7
