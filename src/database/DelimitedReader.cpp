#include "database/DelimitedReader.h"

namespace mailvane {

namespace {
constexpr int End = std::char_traits<char>::eof();
}

DelimitedReader::DelimitedReader(std::istream& input, char delimiter)
    : input_(input), delimiter_(delimiter) {
    for (const int mark : {0xEF, 0xBB, 0xBF}) {
        if (Peek() != mark) break;
        Take();
    }
}

int DelimitedReader::Peek() {
    return input_.rdbuf()->sgetc();
}

int DelimitedReader::Take() {
    const int byte = input_.rdbuf()->sbumpc();
    if (byte == End) return End;
    ++bytesRead_;
    if (byte == '\n') ++line_;
    return byte;
}

bool DelimitedReader::AtFieldEnd() {
    const int byte = Peek();
    return byte == End || byte == '\r' || byte == '\n' ||
           byte == static_cast<unsigned char>(delimiter_);
}

void DelimitedReader::ReadQuoted(DelimitedField& field) {
    field.quoted = true;
    Take();
    for (;;) {
        const int byte = Take();
        if (byte == End) {
            endedInsideQuotes_ = true;
            return;
        }
        if (byte == '"') {
            if (Peek() != '"') return;
            Take();
        }
        field.text.push_back(static_cast<char>(byte));
    }
}

void DelimitedReader::ReadPlain(DelimitedField& field) {
    while (!AtFieldEnd())
        field.text.push_back(static_cast<char>(Take()));
}

bool DelimitedReader::Next(std::vector<DelimitedField>& record) {
    record.clear();
    while (Peek() == '\r' || Peek() == '\n')
        Take();
    if (Peek() == End) return false;
    recordLine_ = line_;
    for (;;) {
        DelimitedField& field = record.emplace_back();
        if (Peek() == '"') ReadQuoted(field);
        ReadPlain(field);  // what stands behind a closing quote belongs to the field
        if (Peek() != static_cast<unsigned char>(delimiter_)) break;
        Take();
    }
    if (Peek() == '\r') Take();
    if (Peek() == '\n') Take();
    return true;
}

}  // namespace mailvane
