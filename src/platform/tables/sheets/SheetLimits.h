#pragma once

namespace mailvane {

// What a sheet of a workbook holds; the row with the names of the columns counts.
inline constexpr int MostSheetRows = 1048576;
inline constexpr int MostSheetColumns = 16384;

}  // namespace mailvane
