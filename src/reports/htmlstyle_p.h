#pragma once

namespace Reports {

/// The style sheet of HTML documents.
extern const char htmlStyle[];

} // namespace Reports
