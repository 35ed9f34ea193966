// The measures of custom paper sizes: units, conversion, what the windows show.

#pragma once

#include <string>

// Units by code. The pel is 1/72 inch; stored sizes are always in pels.
enum MeasureUnit { kPels = 1, kInches = 2, kMillimetres = 3 };

// `value` rounded to a whole number, halves up; below zero the fraction is cut off.
double Aproximate(double value);

// `value` in another unit. Between two different units it goes through whole pels and comes out as
// precise as the unit is shown, so converting there and back need not give the same value again;
// within one unit it stays as it is. Codes other than inches and millimetres count as pels.
double ConvertMetrics(int from, int to, double value);

// Decimals that the unit is shown with, and the smallest step between two values shown.
[[nodiscard]] int UnitDecimals(int unit);
double UnitStep(int unit);

// `value` with the unit's decimals and the locale's decimal separator.
std::string MeasureText(int unit, double value);

// Writes the label "( MIN - MAX UNIT )" to `out` for limits in pels, given as the printer
// description has them; a missing one counts as 0. A unit that is neither pels nor inches counts as
// millimetres. 1.
int BuildRange(const char *min_pels, const char *max_pels, int unit, std::string &out);

// Limits, given in pels, in the unit.
struct MeasureRange {
  double min = 0;
  double max = 0;
};
MeasureRange RangeIn(int unit, const char *min_pels, const char *max_pels);

// What a spin button takes between those limits: never less than one pel, since a size without
// extent would make the queue list unreadable, and never an upturned range.
MeasureRange EnterableRange(int unit, const char *min_pels, const char *max_pels);

// A limit of the current printer ("MinWidth", "MaxWidth", "MinLength", "MaxLength") in pels, lent;
// null without it.
const char *PrinterLimit(const char *name);
