#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/dao/file/Workspace.h"
#include "platform/os/DateTime.h"

namespace mailvane {

/// The variables and flags that the whole program shares. One instance a process.
struct ApplicationState {
    std::string RegistryAppName = "Mailvane";
    std::string CurrentProjectFile;  ///< "" or " ": no project file yet
    std::string ProjectFolder;       ///< without a separator at its end
    std::string ProjectName;
    std::shared_ptr<Workspace> MainWorkspace;
    std::shared_ptr<Database> MessageStore;
    /// The folder that the last message was saved to, kept open for the next one; its Name is the
    /// folder's.
    std::shared_ptr<Recordset> CurrentFolderRecordset;
    std::string QuoteChar = "\"";
    bool RunBusy = false;
    bool LoadingProject = false;
    bool ViewEmailPreload = false;
    bool UnattendedRun = false;
    bool SendReceiveActive = false;
    bool FinalRunStep = false;
    bool ExitRequested = false;
    bool NewProjectInProgress = false;
    bool FirstLaunch = false;
    bool CancelRequested = false;
    bool DialogAnswer = false;
    bool SendNowFlag = false;
    bool CompactConfirmed = false;
    int BusyPointers = 0;       ///< how many blocks that show the busy pointer are under way
    long LastSmtpActivity = 0;  ///< whole seconds since midnight

    bool ProjectOpen() const { return !CurrentProjectFile.empty() && CurrentProjectFile != " "; }
};

}  // namespace mailvane
