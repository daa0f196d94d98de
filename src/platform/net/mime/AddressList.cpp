#include "platform/net/mime/AddressList.h"

#include <utility>

#include "platform/net/mime/TextCoding.h"

namespace mailvane {

namespace {

/// Reads a list from left to right. Quotes, parentheses and angle brackets that nothing closes are
/// taken as ordinary noise, so that a slip in one name does not swallow the addresses behind it.
class ListReader {
public:
    explicit ListReader(std::string_view list)
        : list_(list),
          lastQuote_(LastOf('"')),
          lastParenthesis_(LastOf(')')),
          lastBracket_(LastOf(']')) {}

    std::vector<AddressItem> Read() {
        while (at_ < list_.size())
            Next();
        EndItem();
        FlushHeld();
        return std::move(items_);
    }

private:
    /// Behind the last of these characters there is none to search for; 0 when there is none at
    /// all.
    std::size_t LastOf(char c) const {
        const std::size_t found = list_.rfind(c);
        return found == std::string_view::npos ? 0 : found;
    }

    void Next() {
        const char c = list_[at_];
        if (c == '"') {
            ReadQuoted();
        } else if (c == '(') {
            ReadComment();
        } else if (c == '<') {
            ReadAngle();
        } else if (c == '[' && at_ < lastBracket_) {
            Take(list_.find(']', at_) + 1 - at_);  // an address literal holds colons
        } else if (c == ',' || c == ';') {
            EndItem();
            start_ = ++at_;
        } else if (c == ':' && !hasAtSign_ && !hasAngle_) {
            // What stands before is the name of a group, or "mailto".
            plain_.clear();
            name_.clear();
            start_ = ++at_;
        } else if (c == '>') {
            PassOver();
        } else {
            Take(1);
        }
    }

    void PassOver() {
        irregular_ = true;
        ++at_;
    }

    void Take(std::size_t count) {
        irregular_ |= hasAngle_ && list_[at_] != ' ' && list_[at_] != '\t';
        hasAtSign_ |= list_[at_] == '@';
        plain_ += list_.substr(at_, count);
        name_ += list_.substr(at_, count);
        at_ += count;
    }

    void ReadQuoted() {
        if (lastQuote_ <= at_) return PassOver();
        irregular_ |= hasAngle_;
        const std::size_t first = at_++;
        while (at_ < lastQuote_ && list_[at_] != '"') {
            if (list_[at_] == '\\' && at_ + 1 < lastQuote_) ++at_;
            name_ += list_[at_++];
        }
        ++at_;
        plain_ += list_.substr(first, at_ - first);
    }

    void ReadComment() {
        if (lastParenthesis_ <= at_) return PassOver();
        int depth = 0;
        do {
            const char c = list_[at_++];
            if (c == '(') ++depth;
            if (c == ')') --depth;
            if (c != '(' && c != ')') comment_ += c;
        } while (depth > 0 && at_ <= lastParenthesis_);
        irregular_ |= depth > 0;
    }

    void ReadAngle() {
        const std::size_t stop = list_.find_first_of("<>", at_ + 1);
        if (stop == std::string_view::npos || list_[stop] == '<') return PassOver();
        std::string_view inside = Trimmed(list_.substr(at_ + 1, stop - at_ - 1));
        // A source route before the address is ignored (RFC 5321 section 4.1.1.3).
        if (inside.substr(0, 1) == "@") inside.remove_prefix(inside.find(':') + 1);
        if (angle_.empty()) angle_ = inside;
        irregular_ |= hasAngle_;
        hasAngle_ = true;
        at_ = stop + 1;
    }

    void EndItem() {
        AddressItem item;
        const bool addressAsName = hasAngle_ && hasAtSign_;
        if (!irregular_ && !addressAsName)
            item.source = Trimmed(list_.substr(start_, at_ - start_));
        item.address = hasAngle_ ? angle_ : std::string(Trimmed(plain_));
        item.name = Trimmed(hasAngle_ && !Trimmed(name_).empty() ? name_ : comment_);
        // A piece without an at sign before a name with an address is the front of that name:
        // Doe, John <john@example.com>
        if (!hasAngle_ && item.address.find('@') == std::string::npos) {
            if (!item.address.empty()) held_.push_back(std::move(item));
        } else {
            if (hasAngle_) {
                JoinHeld(item);
            } else {
                FlushHeld();
            }
            if (!item.address.empty()) items_.push_back(std::move(item));
        }
        plain_.clear();
        name_.clear();
        comment_.clear();
        angle_.clear();
        hasAngle_ = hasAtSign_ = irregular_ = false;
    }

    void JoinHeld(AddressItem& item) {
        if (held_.empty()) return;
        std::string front;
        for (const AddressItem& piece : held_)
            front += piece.address + ", ";
        item.name = front + item.name;
        item.source.clear();
        held_.clear();
    }

    void FlushHeld() {
        for (AddressItem& piece : held_)
            items_.push_back(std::move(piece));
        held_.clear();
    }

    std::string_view list_;
    std::size_t lastQuote_;
    std::size_t lastParenthesis_;
    std::size_t lastBracket_;
    std::size_t at_ = 0;
    std::size_t start_ = 0;
    std::string plain_;  // the item outside angle brackets and comments, quotes kept
    std::string name_;   // the same with the quotes taken off
    std::string comment_;
    std::string angle_;
    bool hasAngle_ = false;
    bool hasAtSign_ = false;  // outside quotes, comments and angle brackets
    bool irregular_ = false;  // the item holds what no reader of a header expects
    std::vector<AddressItem> items_;
    std::vector<AddressItem> held_;
};

}  // namespace

std::vector<AddressItem> ParseAddressList(std::string_view list) {
    return ListReader(WithoutLineBreaks(list)).Read();
}

}  // namespace mailvane
