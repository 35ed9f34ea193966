#include "customsizes.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "cmessages.h"
#include "optionstate.h"
#include "textline.h"

namespace {

constexpr double L_PelsPerInch = 72.0;
constexpr double L_MillimetresPerInch = 25.4;
// What values are multiplied with before they are rounded to their last decimal.
constexpr double L_InchPrecision = 100.0;
constexpr double L_MillimetrePrecision = 10.0;

double ToPels(int unit, double value) {
  if (unit == kInches) return L_PelsPerInch * value;
  if (unit == kMillimetres) return L_PelsPerInch * value / L_MillimetresPerInch;
  return value;
}

double FromPels(int unit, double pels) {
  if (unit == kInches) {
    return Aproximate(L_InchPrecision * pels / L_PelsPerInch) / L_InchPrecision;
  }
  if (unit == kMillimetres) {
    return Aproximate(L_MillimetrePrecision * L_MillimetresPerInch * pels / L_PelsPerInch) /
           L_MillimetrePrecision;
  }
  return Aproximate(pels);
}

double NumberOf(const char *text) { return text == nullptr ? 0 : NumberFromText(text); }

const char *UnitName(int unit) {
  if (unit == kPels) return G_Translate("DEF_BTN_PELS_TITLE");
  if (unit == kInches) return G_Translate("DEF_BTN_INCHES_TITLE");
  return G_Translate("DEF_BTN_MILLIMETERS_TITLE");
}

}  // namespace

double Aproximate(double value) {
  const double whole = std::trunc(value);
  return value - whole >= 0.5 ? std::trunc(value + 0.5) : whole;
}

double ConvertMetrics(int from, int to, double value) {
  if (from == to) return value;
  return FromPels(to, Aproximate(ToPels(from, value)));
}

int UnitDecimals(int unit) {
  if (unit == kPels) return 0;
  return unit == kInches ? 2 : 1;
}

double UnitStep(int unit) {
  if (unit == kPels) return 1;
  return unit == kInches ? 0.01 : 0.1;
}

std::string MeasureText(int unit, double value) {
  const int decimals = UnitDecimals(unit);
  std::string text(static_cast<size_t>(std::snprintf(nullptr, 0, "%.*f", decimals, value)), '\0');
  std::snprintf(text.data(), text.size() + 1, "%.*f", decimals, value);
  return text;
}

MeasureRange RangeIn(int unit, const char *min_pels, const char *max_pels) {
  return {ConvertMetrics(kPels, unit, NumberOf(min_pels)),
          ConvertMetrics(kPels, unit, NumberOf(max_pels))};
}

MeasureRange EnterableRange(int unit, const char *min_pels, const char *max_pels) {
  const MeasureRange limits = RangeIn(unit, min_pels, max_pels);
  const double min = std::max(limits.min, ConvertMetrics(kPels, unit, 1));
  return {min, std::max(limits.max, min)};
}

int BuildRange(const char *min_pels, const char *max_pels, int unit, std::string &out) {
  const int shown = unit == kPels || unit == kInches ? unit : kMillimetres;
  const MeasureRange range = RangeIn(shown, min_pels, max_pels);
  out = "( " + MeasureText(shown, range.min) + " - " + MeasureText(shown, range.max) + " " +
        UnitName(shown) + " )";
  return 1;
}

const char *PrinterLimit(const char *name) { return HashText(G_PrinterCpsParam_hash, name); }
