#pragma once

#include "platform/tables/Frames.h"
#include "platform/tables/sheets/PackageXml.h"

namespace mailvane {

// For reading processes: the sheets of a workbook with their rows. Values of formulas are the
// results that the file keeps; errors read as Null. What is damaged throws std::exception.
void ReadXlsx(const Package& package, FrameWriter& frames);
bool ReadOds(const Package& package, FrameWriter& frames);  ///< false when it is none

}  // namespace mailvane
