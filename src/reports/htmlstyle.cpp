#include "htmlstyle_p.h"

namespace Reports {

// Each ink has at least 4.5 times the contrast of its paper. A verdict differs from another in the line around it too,
// which a gray printer shows.
const char htmlStyle[] = R"(
:root {
  color-scheme: light dark;
  --ink: #1b1f24; --faint: #57606a; --paper: #fff; --line: #c9d1d9;
  --good: #05603a; --on-good: #e6f6ed; --bad: #8f1d14; --on-bad: #fdecea; --open: #6b4e00; --on-open: #fdf3d8;
}
@media (prefers-color-scheme: dark) {
  :root {
    --ink: #e6e9ec; --faint: #a3abb3; --paper: #16191d; --line: #444c54;
    --good: #7fdca9; --on-good: #10291d; --bad: #ffb4a9; --on-bad: #35110d; --open: #f3cf73; --on-open: #2e2407;
  }
}
* { box-sizing: border-box; }
body {
  margin: 0 auto; padding: 1rem; max-width: 64rem; color: var(--ink); background: var(--paper);
  font: 1rem/1.5 system-ui, -apple-system, "Segoe UI", Roboto, "Liberation Sans", Arial, sans-serif;
  overflow-wrap: anywhere; -webkit-text-size-adjust: 100%;
}
h1 { font-size: 1.6rem; line-height: 1.25; margin: 1.5rem 0 1rem; }
h2 { font-size: 1.2rem; line-height: 1.3; margin: 2rem 0 0.5rem; }
p { margin: 0.5rem 0; max-width: 46rem; }
.verdict, .warning { display: flex; gap: 0.75rem; align-items: flex-start; padding: 0.75rem 1rem; border-radius: 6px; }
.verdict { max-width: none; margin: 0; font-size: 1.25rem; line-height: 1.4; border: 3px solid currentColor; }
.verdict svg { flex: none; width: 2.25rem; height: 2.25rem; }
.warning { border: 1px solid currentColor; max-width: none; }
.warning svg { flex: none; width: 1.5rem; height: 1.5rem; }
.good { color: var(--good); background: var(--on-good); }
.bad { color: var(--bad); background: var(--on-bad); border-style: double; border-width: 6px; }
.open, .warning { color: var(--open); background: var(--on-open); }
.open { border-style: dashed; }
.scroll { /* a shadow where there is more to the side */
  overflow-x: auto; margin: 0.5rem 0 1rem;
  background: linear-gradient(90deg, var(--paper) 1rem, transparent) left / 2rem 100% local no-repeat,
    linear-gradient(270deg, var(--paper) 1rem, transparent) right / 2rem 100% local no-repeat,
    radial-gradient(farthest-side at 0 50%, #0005, transparent) left / 0.75rem 100% no-repeat,
    radial-gradient(farthest-side at 100% 50%, #0005, transparent) right / 0.75rem 100% no-repeat;
}
.scroll:focus-visible, summary:focus-visible { outline: 2px solid var(--ink); outline-offset: 2px; }
table { border-collapse: collapse; font-size: 0.9375rem; line-height: 1.4; overflow-wrap: break-word; }
th, td {
  text-align: left; vertical-align: top; padding: 0.3rem 1.25rem 0.3rem 0; border-bottom: 1px solid var(--line);
}
th:last-child, td:last-child { padding-right: 0; }
thead th { vertical-align: bottom; font-weight: 600; color: var(--faint); }
.scroll th, .scroll td:not(.long) { white-space: nowrap; }
.number { text-align: right; font-variant-numeric: tabular-nums; }
.long { overflow-wrap: anywhere; min-width: 12rem; font-size: 0.875rem; }
.facts { margin: 0.5rem 0 1rem; overflow-wrap: anywhere; }
.facts th { font-weight: normal; color: var(--faint); min-width: 7rem; }
summary { cursor: pointer; padding: 0.3rem 0; font-weight: 600; }
.charts { display: grid; grid-template-columns: repeat(auto-fit, minmax(min(22rem, 100%), 1fr)); gap: 1rem; }
figure { margin: 0; max-width: 36rem; }
figure svg { display: block; width: 100%; height: auto; background: #fff; border: 1px solid var(--line); }
figcaption { margin-top: 0.25rem; font-size: 0.875rem; color: var(--faint); }
@page { margin: 16mm 15mm; @bottom-right { content: counter(page) " / " counter(pages); font: 8pt sans-serif; } }
@media print {
  :root {
    color-scheme: light;
    --ink: #000; --faint: #3d444b; --paper: #fff; --line: #999;
    --good: #05603a; --on-good: #fff; --bad: #8f1d14; --on-bad: #fff; --open: #5a4100; --on-open: #fff;
  }
  body { padding: 0; max-width: none; font-size: 10pt; }
  h2 { margin-top: 1.25rem; }
  table { font-size: 9pt; }
  thead { display: table-header-group; }
  tr, figure, .verdict, .warning { break-inside: avoid; }
  h1, h2, summary { break-after: avoid; }
  p { orphans: 3; widows: 3; }
  .scroll { overflow: visible; background: none; }
  .long { min-width: 0; }
  details::details-content { content-visibility: visible; block-size: auto; }
  .charts { grid-template-columns: 1fr 1fr; gap: 5mm; }
  figure { max-width: 80mm; }
}
)";

} // namespace Reports
