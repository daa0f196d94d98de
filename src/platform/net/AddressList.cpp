#include "platform/net/AddressList.h"

#include <utility>

#include "platform/net/TextCoding.h"

namespace mailvane {

namespace {

/// Reads a list from left to right. Quotes, parentheses and angle brackets that nothing closes are
/// taken as ordinary noise, so that a slip in one name does not swallow the addresses behind it.
class ListReader {
public:
    explicit ListReader(std::string_view list)
        : list_(list), lastQuote_(list.rfind('"')), lastParenthesis_(list.rfind(')')) {}

    std::vector<AddressItem> Read() {
        while (at_ < list_.size())
            Next();
        EndItem();
        FlushHeld();
        return std::move(items_);
    }

private:
    void Next() {
        const char c = list_[at_];
        if (c == '"') {
            ReadQuoted();
        } else if (c == '(') {
            ReadComment();
        } else if (c == '<') {
            ReadAngle();
        } else if (c == '[' && list_.find(']', at_) != std::string_view::npos) {
            Take(list_.find(']', at_) + 1 - at_);  // an address literal holds colons
        } else if (c == ',' || c == ';') {
            EndItem();
            start_ = ++at_;
        } else if (c == ':' && plain_.find('@') == std::string::npos) {
            // What stands before is the name of a group, or "mailto".
            plain_.clear();
            name_.clear();
            start_ = ++at_;
        } else if (c == '>') {
            ++at_;
        } else {
            Take(1);
        }
    }

    void Take(std::size_t count) {
        plain_ += list_.substr(at_, count);
        name_ += list_.substr(at_, count);
        at_ += count;
    }

    void ReadQuoted() {
        if (lastQuote_ <= at_) {
            ++at_;
            return;
        }
        const std::size_t first = at_++;
        while (at_ < lastQuote_ && list_[at_] != '"') {
            if (list_[at_] == '\\' && at_ + 1 < lastQuote_) ++at_;
            name_ += list_[at_++];
        }
        ++at_;
        plain_ += list_.substr(first, at_ - first);
    }

    void ReadComment() {
        if (lastParenthesis_ == std::string_view::npos || lastParenthesis_ <= at_) {
            ++at_;
            return;
        }
        int depth = 0;
        do {
            const char c = list_[at_++];
            if (c == '(') ++depth;
            if (c == ')') --depth;
            if (c != '(' && c != ')') comment_ += c;
        } while (depth > 0 && at_ <= lastParenthesis_);
    }

    void ReadAngle() {
        const std::size_t stop = list_.find_first_of("<>", at_ + 1);
        if (stop == std::string_view::npos || list_[stop] == '<') {
            ++at_;
            return;
        }
        std::string_view inside = Trimmed(list_.substr(at_ + 1, stop - at_ - 1));
        // A source route before the address is ignored (RFC 5321 section 4.1.1.3).
        if (inside.substr(0, 1) == "@") inside.remove_prefix(inside.find(':') + 1);
        if (angle_.empty()) angle_ = inside;
        hasAngle_ = true;
        at_ = stop + 1;
    }

    void EndItem() {
        AddressItem item;
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
        hasAngle_ = false;
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
    std::size_t at_ = 0;
    std::size_t start_ = 0;
    std::string plain_;  // the item outside angle brackets and comments, quotes kept
    std::string name_;   // the same with the quotes taken off
    std::string comment_;
    std::string angle_;
    bool hasAngle_ = false;
    std::vector<AddressItem> items_;
    std::vector<AddressItem> held_;
};

}  // namespace

std::vector<AddressItem> ParseAddressList(std::string_view list) {
    return ListReader(WithoutLineBreaks(list)).Read();
}

}  // namespace mailvane
