#include "platform/dao/StatementHandler.h"

#include <algorithm>
#include <utility>

namespace mailvane {

StatementHandler::StatementHandler(std::initializer_list<int> silentNumbers, Ask ask)
    : silent_(silentNumbers), ask_(std::move(ask)) {}

bool StatementHandler::Passes(const DaoError& outcome) const {
    return outcome.Ok() ||
           std::find(silent_.begin(), silent_.end(), outcome.number) != silent_.end();
}

bool StatementHandler::GoOn(const DaoError& outcome) {
    if (ended_) return false;
    if (Passes(outcome)) return true;
    hadError_ = true;
    ended_ = !ask_(outcome);
    return !ended_;
}

}  // namespace mailvane
