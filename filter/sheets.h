// Laid-out pages on their way to sheets of paper, one or several on a side.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "jobresult.h"
#include "jobsettings.h"
#include "jobsource.h"

namespace kpx::filter {

// How pages lie on the paper: upright, or with their top at the paper's left or right edge.
enum class PageTurn { kNone, kLeft, kRight };

// How the settings' "*Orientation" turns the pages.
PageTurn TurnOf(const JobSettings &settings);

// The same settings with the pages upright for the printer's own controller: what is printed is
// laid out as it is to lie.
JobSettings UprightSettings(const JobSettings &settings);

// The paper in force and its printable area, as the reader of its pages holds it when they are
// turned so.
PpdPageSize PageInHand(const JobSettings &settings, PageTurn turn);

// How the pages share a side of a sheet: a grid, as the reader holds the sheet.
struct SheetPlan {
  size_t columns = 1, rows = 1;
  bool turned = false;              // the reader turns the paper by a quarter, clockwise
  bool from_right = false;          // the first page is at the right
  bool columns_first = false;       // the second page is below the first one
  bool from_bottom = false;         // the first page is at the bottom
  double width = 0, length = 0;     // of the paper, and of a page before it is scaled; points
  double inset_x = 0, inset_y = 0;  // of the paper, left free on both sides; points
  PageTurn turn = PageTurn::kNone;  // the paper is turned so in the reader's hands

  size_t Places() const { return columns * rows; }
};

// The plan for `pages` pages (1, 2, 4, 6, 8, 9 or 16) on one side of the paper, as the reader holds
// it. Those of two, six and eight lie across the paper. `order` is "Left" (rows from the left),
// "Right" (rows from the right), "Down" (columns from the left), "Back" (columns from the right),
// or one of the eight orders of the word "number-up-layout" ("lrtb" is left to right, then top to
// bottom); anything else is "Left".
SheetPlan PlanFor(const PpdPageSize &paper, size_t pages, std::string_view order);

// Whether that many pages can share a side, and whether PlanFor knows the order.
[[nodiscard]] bool IsPagesPerSide(std::string_view pages);
[[nodiscard]] bool IsPageOrder(std::string_view order);

// Warns of a "*Nup" and a "*NupOrder" that nobody knows.
void WarnOfPageSettings(const JobSettings &settings, JobResult *result);

// The plan that the settings' "*Nup" and "*NupOrder" ask for, on their paper turned so. Only two
// and four pages have an order of the windows, all have one of an application; one page for any
// other number.
SheetPlan PlanOf(const JobSettings &settings, PageTurn turn);

// The plan for a booklet of the settings' paper: two pages a side.
SheetPlan BookletPlanOf(const JobSettings &settings, PageTurn turn);

// The room for a page at a place (from 0, in the order of the pages).
struct SheetCell {
  std::array<double, 6> matrix;  // puts the room's lower left corner on the paper
  double width = 0, length = 0;  // points, as the reader holds the page
};
SheetCell CellOf(const SheetPlan &plan, size_t place);

// The matrix that puts a page at a place (from 0, in the order of the pages). It is scaled to fit
// and is in the middle of its cell; the grid's middle is that of the paper, so that a sheet can be
// folded there. Nothing of a page comes closer to the edge than the printer can print.
std::array<double, 6> PlacementOf(const SheetPlan &plan, size_t place);

// Takes the marks of one page after another.
class PageTarget {
 public:
  virtual ~PageTarget() = default;
  virtual void BeginPage() = 0;
  virtual void Write(std::string_view marks) = 0;
  virtual void EndPage() = 0;
};

// Writes pages as the pages of a PostScript document, a side of a sheet each. The document defines
// the font F. `page_setup` comes once a side.
class SheetWriter : public PageTarget {
 public:
  SheetWriter(const SheetPlan &plan, const std::string &page_setup, JobSink *sink)
      : plan_(plan), page_setup_(page_setup), sink_(sink) {}

  void BeginPage() override;
  void Write(std::string_view marks) override { sink_->Write(marks); }
  void EndPage() override;

  // Leaves the next place empty.
  void SkipPlace();

  // Ends a side whose last places are empty.
  void Finish();

  // The sides begun.
  size_t Sides() const { return sides_; }

 private:
  void BeginSide();
  [[nodiscard]] bool IsPlaced() const {
    return plan_.Places() > 1 || plan_.turn != PageTurn::kNone;
  }

  const SheetPlan plan_;
  const std::string &page_setup_;
  JobSink *sink_;
  size_t place_ = 0;  // of the next page, 0 between two sides
  size_t sides_ = 0;
};

}  // namespace kpx::filter
