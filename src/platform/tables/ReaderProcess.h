#pragma once

#include <sys/types.h>

#include <functional>
#include <memory>
#include <string>

#include "platform/tables/Frames.h"

namespace mailvane {

/// Reads a foreign file in a process of its own: whatever a damaged file does to the library that
/// reads it ends that process and not this one, and what the library prints goes nowhere.
class ReaderProcess {
public:
    using Work = std::function<void(FrameWriter& frames)>;

    /// Starts `work`; its frames come through a pipe, while it goes on. It is ended when it
    /// computes for `patience` seconds without a frame: a damaged file can lead in circles.
    static std::unique_ptr<ReaderProcess> Start(const Work& work, int patience);
    /// Runs `work` to its end; its frames stand in `handle` (a file) from its position. False when
    /// it did not end well.
    static bool Run(const Work& work, int patience, int handle);

    ~ReaderProcess();  ///< ends the process if it has not
    ReaderProcess(const ReaderProcess&) = delete;
    ReaderProcess& operator=(const ReaderProcess&) = delete;

    FrameReader& Frames() { return frames_; }

private:
    ReaderProcess(pid_t child, int pipe) : child_(child), pipe_(pipe), frames_(pipe) {}
    pid_t child_;
    int pipe_;
    FrameReader frames_;
};

}  // namespace mailvane
