#include "mesh_io/nastran_deck_lines.h"

#include "mesh_io/file_text.h"

#include <algorithm>
#include <cctype>
#include <cstring>

#include <sys/stat.h>

namespace qv7 {
namespace tessarium {
namespace {

constexpr std::size_t max_include_depth = 16;

char upper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool starts_with_word(std::string_view text, char const* word)
{
    std::size_t i = 0, n = std::strlen(word);
    while (i < text.size() && (text[i] == ' ' || text[i] == '\t')) ++i;
    if (text.size() - i < n) return false;
    for (std::size_t k = 0; k < n; ++k)
        if (upper(text[i + k]) != word[k]) return false;
    return true;
}

// The line without its comment, its carriage return and its trailing blanks.
std::string_view content(std::string_view text)
{
    std::size_t dollar = text.find('$');
    if (dollar != std::string_view::npos) text = text.substr(0, dollar);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\r' || text.back() == '\t')) text.remove_suffix(1);
    return text;
}

bool is_continuation(std::string_view text)
{
    char c = text[0];
    return c == '+' || c == '*' || c == ',' || c == ' ' || c == '\t';
}

// Where the bulk data begins: after the "BEGIN BULK" line, or at the start without one.
std::size_t bulk_start(std::string const& text, std::size_t& line)
{
    std::size_t at = 0, number = 0;
    while (at < text.size()) {
        std::size_t end = text.find('\n', at);
        if (end == std::string::npos) end = text.size();
        std::string_view l = content(std::string_view(text.data() + at, end - at));
        ++number;
        at = end + 1;
        if (!starts_with_word(l, "BEGIN")) continue;
        std::string words;
        for (char c : l) words += upper(c);
        if (words.find("BULK") != std::string::npos) {
            line = number;
            return at;
        }
    }
    line = 0;
    return 0;
}

}  // namespace

__nastran_deck::__nastran_deck(std::string path, std::string text)
{
    auto d = std::make_unique<deck>();
    d->at = bulk_start(text, d->line);
    d->text = std::move(text);
    paths_.push_back(std::move(path));
    d->path = &paths_.back();
    open_.push_back(std::move(d));
}

bool __nastran_deck::next_line(line& l, bool same_deck)
{
    if (has_pending_) {
        l = pending_;
        has_pending_ = false;
        return true;
    }
    while (!open_.empty()) {
        deck& d = *open_.back();
        if (d.at >= d.text.size()) {
            if (open_.size() == 1 || same_deck) return false;
            open_.pop_back();
            continue;
        }
        std::size_t end = d.text.find('\n', d.at);
        if (end == std::string::npos) end = d.text.size();
        l.start = d.at;
        l.number = ++d.line;
        l.text = content(std::string_view(d.text.data() + d.at, end - d.at));
        d.at = end + 1;
        if (!l.text.empty() && l.text.find_first_not_of(" \t") != std::string_view::npos) return true;
    }
    return false;
}

// Fixed fields are cut by column, after tabs are taken to the next multiple of 8; columns past
// 72 hold the continuation mark, and nothing past 80 counts. Free fields are cut at commas, the
// field after each 8 (or 4) being a continuation mark.
void __nastran_deck::add_fields(line const& l, bool first, __nastran_card& card)
{
    std::string_view text = l.text;
    std::size_t slots = 8;
    std::size_t comma = text.find(',');
    if (comma != std::string_view::npos) {
        std::string_view head = text.substr(0, comma);
        while (!head.empty() && (head.back() == ' ' || head.back() == '\t')) head.remove_suffix(1);
        std::size_t b = head.find_first_not_of(" \t");
        bool large = b != std::string_view::npos && (first ? head.back() : head[b]) == '*';
        if (first) {
            if (large) head.remove_suffix(1);
            card.name.clear();
            if (b != std::string_view::npos)
                for (char c : head.substr(b)) card.name += upper(c);
        }
        slots = large ? 4 : 8;
        std::size_t k = 0, at = comma + 1;
        for (bool last = false; !last; ++k) {
            std::size_t end = text.find(',', at);
            if (end == std::string_view::npos) end = text.size(), last = true;
            if (k % (slots + 1) != slots) card.fields.push_back(text.substr(at, end - at));
            at = end + 1;
        }
        while (card.fields.size() % slots != 0) card.fields.emplace_back();
        return;
    }
    if (std::memchr(text.data(), '\t', text.size())) {
        std::string& expanded = card.expanded.emplace_back();
        for (char c : text) {
            if (c != '\t')
                expanded += c;
            else
                expanded.append(8 - expanded.size() % 8, ' ');
        }
        text = expanded;
    }
    std::string_view name = text.substr(0, std::min<std::size_t>(8, text.size()));
    while (!name.empty() && name.back() == ' ') name.remove_suffix(1);
    bool large = !name.empty() && (first ? name.back() : name[0]) == '*';
    if (first) {
        if (large) name.remove_suffix(1);
        card.name.clear();
        for (char c : name) card.name += upper(c);
    }
    std::size_t width = large ? 16 : 8;
    for (std::size_t k = 0; k < 64 / width; ++k) {
        std::size_t at = std::min(text.size(), 8 + k * width);
        card.fields.push_back(text.substr(at, std::min(width, text.size() - at)));
    }
}

bool __nastran_deck::next(__nastran_card& card)
{
    line l;
    for (;;) {
        if (!next_line(l, false)) return false;
        if (!is_continuation(l.text)) break;
        ++stray_;
    }
    card.fields.clear();
    card.expanded.clear();
    card.line = l.number;
    card.start = l.start;
    card.file = open_.back()->path;
    add_fields(l, true, card);
    while (next_line(l, true)) {
        if (!is_continuation(l.text)) {
            pending_ = l;
            has_pending_ = true;
            break;
        }
        add_fields(l, false, card);
    }
    if (card.name == "ENDDATA") return false;
    return true;
}

bool __nastran_deck::include(__nastran_card const& card, std::string& why)
{
    deck& d = *open_.back();
    // The name between quotes, which may run over the card's continuation lines.
    std::size_t from = d.text.find('\'', card.start);
    std::size_t to = from == std::string::npos ? from : d.text.find('\'', from + 1);
    if (to == std::string::npos) {
        why = "INCLUDE without a file name between quotes";
        return false;
    }
    std::string name;
    for (std::size_t k = from + 1; k < to; ++k)
        if (d.text[k] != '\n' && d.text[k] != '\r') name += d.text[k];
    while (!name.empty() && name.back() == ' ') name.pop_back();
    if (name.empty()) {
        why = "INCLUDE with an empty file name";
        return false;
    }
    if (open_.size() > max_include_depth) {
        why = "INCLUDE nested more than " + std::to_string(max_include_depth) + " deep";
        return false;
    }
    std::size_t slash = d.path->find_last_of('/');
    std::string path = name[0] == '/' || slash == std::string::npos ? name : d.path->substr(0, slash + 1) + name;
    struct stat status;
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        why = "the INCLUDE file \"" + path + "\" cannot be read (missing, or not a plain file)";
        return false;
    }
    auto included = std::make_unique<deck>();
    included->text = __file_text(path);
    if (included->text.empty()) {
        why = "the INCLUDE file \"" + path + "\" cannot be read or is empty";
        return false;
    }
    if (has_pending_) {  // the line read ahead comes after the included deck
        d.at = pending_.start;
        d.line = pending_.number - 1;
        has_pending_ = false;
    }
    paths_.push_back(std::move(path));
    included->path = &paths_.back();
    open_.push_back(std::move(included));
    return true;
}

}  // namespace tessarium
}  // namespace qv7
