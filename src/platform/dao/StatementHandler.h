#pragma once

#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include "platform/dao/DaoError.h"

namespace mailvane {

/// The repeated pattern of the database tools: listed error numbers pass silently, any other error
/// asks, Yes goes on with the next statement, No ends the run.
class StatementHandler {
public:
    /// `ask` shows the question for an error and returns true to go on.
    using Ask = std::function<bool(const DaoError&)>;
    StatementHandler(std::initializer_list<int> silentNumbers, Ask ask);

    /// Takes the outcome of a statement. True: go on with the next one. Once it said false it
    /// says so for every later statement, without asking again.
    bool GoOn(const DaoError& outcome);
    /// Success, or a silent number: GoOn would not ask.
    bool Passes(const DaoError& outcome) const;
    bool Ended() const { return ended_; }
    bool HadError() const { return hadError_; }  ///< an error that was not silent

private:
    std::vector<int> silent_;
    Ask ask_;
    bool ended_ = false;
    bool hadError_ = false;
};

}  // namespace mailvane
