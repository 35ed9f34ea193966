#include "elements.h"

#include <cmath>
#include <map>
#include <numbers>
#include <string>
#include <vector>

#include "glyphs.h"

namespace kpx::pixmaps {

namespace {

constexpr double L_HeadLength = 3.2;  // of an arrow, in widths of its line
constexpr double L_HeadWidth = 2.2;   // half of it
constexpr double L_DashLength = 3;    // pixels

double Radians(double degrees) { return degrees * std::numbers::pi / 180; }

// One picture while it is drawn, and the step at hand.
class Painter {
 public:
  Painter(const Picture &picture, const std::map<std::string, unsigned> &colours, int scale)
      : canvas_(picture.width, picture.height, scale), colours_(colours), cr_(canvas_.context()) {}

  void Take(const Step &step);
  Image Finish() const { return canvas_.Finish(); }

 private:
  struct Element {
    const char *name;
    size_t words;  // behind the name
    bool more;     // and any number of further ones
    void (Painter::*draw)();
  };
  static const Element kElements[];

  const std::string &Word(size_t index) const { return step_->words[index + 1]; }
  size_t Count() const { return step_->words.size() - 1; }
  double Number(size_t index) const { return NumberOf(*step_, Word(index)); }

  // Makes the named colour the source; false for "-".
  bool Colour(const std::string &name) {
    if (name == "-") return false;
    const auto colour = colours_.find(name);
    if (colour == colours_.end()) throw DescriptionError(step_->line, "no colour " + name);
    const auto channel = [&](int shift) { return ((colour->second >> shift) & 0xFF) / 255.0; };
    cairo_set_source_rgb(cr_, channel(16), channel(8), channel(0));
    return true;
  }

  void FillPath(const std::string &colour) {
    if (Colour(colour)) cairo_fill_preserve(cr_);
  }

  void StrokePath(const std::string &colour) {
    cairo_set_line_width(cr_, pen_);
    if (Colour(colour)) cairo_stroke_preserve(cr_);
    cairo_new_path(cr_);
  }

  // The points from that word on.
  void PathThrough(size_t first) {
    if ((Count() - first) % 2 != 0) throw DescriptionError(step_->line, "a point lacks its Y");
    for (size_t i = first; i + 1 < Count(); i += 2) cairo_line_to(cr_, Number(i), Number(i + 1));
  }

  void Pen() { pen_ = Number(0); }
  void Move() { cairo_translate(cr_, Number(0), Number(1)); }
  void Turn() { cairo_rotate(cr_, Radians(Number(0))); }
  void Scale() { cairo_scale(cr_, Number(0), Number(0)); }
  void NoRim();
  void Push();
  void Pop();
  void Box();
  void Poly();
  void Line();
  void Curve();
  void Arc();
  void Dashes();
  void Disc();
  void Arrow();
  void TurnArrow();
  void Lines();
  void Text();

  void RoundedPath(double x, double y, double width, double height, double radius);
  void Head(const std::string &colour, double x, double y, double angle);
  void DrawGlyph(const Glyph &glyph);

  Canvas canvas_;
  const std::map<std::string, unsigned> &colours_;
  cairo_t *cr_;
  const Step *step_ = nullptr;
  double pen_ = 2;
  std::vector<double> pens_;  // kept by push
};

const Painter::Element Painter::kElements[] = {
    {"pen", 1, false, &Painter::Pen},      {"move", 2, false, &Painter::Move},
    {"turn", 1, false, &Painter::Turn},    {"scale", 1, false, &Painter::Scale},
    {"push", 0, false, &Painter::Push},    {"pop", 0, false, &Painter::Pop},
    {"norim", 4, false, &Painter::NoRim},  {"box", 7, false, &Painter::Box},
    {"poly", 8, true, &Painter::Poly},     {"line", 5, true, &Painter::Line},
    {"curve", 9, false, &Painter::Curve},  {"arc", 6, false, &Painter::Arc},
    {"dashes", 5, true, &Painter::Dashes}, {"disc", 5, false, &Painter::Disc},
    {"arrow", 5, false, &Painter::Arrow},  {"turnarrow", 6, false, &Painter::TurnArrow},
    {"lines", 6, false, &Painter::Lines},  {"text", 5, true, &Painter::Text},
};

void Painter::Take(const Step &step) {
  step_ = &step;
  for (const Element &element : kElements) {
    if (step.words[0] != element.name) continue;
    if (Count() < element.words || (Count() > element.words && !element.more)) {
      throw DescriptionError(step.line, "too few or too many words");
    }
    (this->*element.draw)();
    return;
  }
  throw DescriptionError(step.line, "no such step: " + step.words[0]);
}

void Painter::NoRim() {
  const auto whole = [this](size_t index) { return static_cast<int>(Number(index)); };
  canvas_.LeaveRimOff({whole(0), whole(1), whole(2), whole(3)});
}

void Painter::Push() {
  cairo_save(cr_);
  pens_.push_back(pen_);
}

void Painter::Pop() {
  if (pens_.empty()) throw DescriptionError(step_->line, "pop without push");
  cairo_restore(cr_);
  pen_ = pens_.back();
  pens_.pop_back();
}

void Painter::RoundedPath(double x, double y, double width, double height, double radius) {
  if (radius <= 0) {
    cairo_rectangle(cr_, x, y, width, height);
    return;
  }
  const double right = x + width - radius;
  const double bottom = y + height - radius;
  cairo_new_sub_path(cr_);
  cairo_arc(cr_, right, y + radius, radius, Radians(-90), 0);
  cairo_arc(cr_, right, bottom, radius, 0, Radians(90));
  cairo_arc(cr_, x + radius, bottom, radius, Radians(90), Radians(180));
  cairo_arc(cr_, x + radius, y + radius, radius, Radians(180), Radians(270));
  cairo_close_path(cr_);
}

void Painter::Box() {
  const double inset = Word(6) == "-" ? 0 : pen_ / 2;
  RoundedPath(Number(0) + inset, Number(1) + inset, Number(2) - 2 * inset, Number(3) - 2 * inset,
              Number(4));
  FillPath(Word(5));
  StrokePath(Word(6));
}

void Painter::Poly() {
  PathThrough(2);
  cairo_close_path(cr_);
  FillPath(Word(0));
  StrokePath(Word(1));
}

void Painter::Line() {
  PathThrough(1);
  StrokePath(Word(0));
}

void Painter::Curve() {
  cairo_move_to(cr_, Number(1), Number(2));
  cairo_curve_to(cr_, Number(3), Number(4), Number(5), Number(6), Number(7), Number(8));
  StrokePath(Word(0));
}

void Painter::Arc() {
  cairo_new_path(cr_);
  cairo_arc(cr_, Number(1), Number(2), Number(3), Radians(Number(4)), Radians(Number(5)));
  StrokePath(Word(0));
}

void Painter::Dashes() {
  cairo_set_dash(cr_, &L_DashLength, 1, 0);
  cairo_set_line_cap(cr_, CAIRO_LINE_CAP_BUTT);
  Line();
  cairo_set_line_cap(cr_, CAIRO_LINE_CAP_ROUND);
  cairo_set_dash(cr_, nullptr, 0, 0);
}

void Painter::Disc() {
  cairo_new_path(cr_);
  const double inset = Word(4) == "-" ? 0 : pen_ / 2;
  cairo_arc(cr_, Number(0), Number(1), Number(2) - inset, 0, Radians(360));
  FillPath(Word(3));
  StrokePath(Word(4));
}

// A triangle whose tip is at the point, pointing in that direction.
void Painter::Head(const std::string &colour, double x, double y, double angle) {
  cairo_save(cr_);
  cairo_translate(cr_, x, y);
  cairo_rotate(cr_, angle);
  cairo_move_to(cr_, 0, 0);
  cairo_line_to(cr_, -L_HeadLength * pen_, L_HeadWidth * pen_);
  cairo_line_to(cr_, -L_HeadLength * pen_, -L_HeadWidth * pen_);
  cairo_close_path(cr_);
  if (Colour(colour)) cairo_fill(cr_);
  cairo_restore(cr_);
}

void Painter::Arrow() {
  const double angle = std::atan2(Number(4) - Number(2), Number(3) - Number(1));
  const double back = (L_HeadLength - 0.5) * pen_;
  cairo_move_to(cr_, Number(1), Number(2));
  cairo_line_to(cr_, Number(3) - back * std::cos(angle), Number(4) - back * std::sin(angle));
  StrokePath(Word(0));
  Head(Word(0), Number(3), Number(4), angle);
}

// The head is set on the chord of its own length, so that it seems to follow the arc.
void Painter::TurnArrow() {
  const double radius = Number(3);
  const double from = Radians(Number(4));
  const double to = Radians(Number(5));
  const double side = to < from ? -1 : 1;
  const double base = to - side * L_HeadLength * pen_ / radius;
  cairo_new_path(cr_);
  if (side > 0) {
    cairo_arc(cr_, Number(1), Number(2), radius, from, base);
  } else {
    cairo_arc_negative(cr_, Number(1), Number(2), radius, from, base);
  }
  StrokePath(Word(0));
  Head(Word(0), Number(1) + radius * std::cos(to), Number(2) + radius * std::sin(to),
       (to + base) / 2 + side * Radians(90));
}

void Painter::Lines() {
  const int count = static_cast<int>(Number(4));
  for (int i = 0; i < count; ++i) {
    const double y = Number(2) + i * Number(5);
    const double width = i == count - 1 && count > 1 ? Number(3) * 0.6 : Number(3);
    cairo_rectangle(cr_, Number(1), y, std::round(width), pen_);
    if (Colour(Word(0))) cairo_fill(cr_);
  }
}

void Painter::DrawGlyph(const Glyph &glyph) {
  for (const std::string &stroke : glyph.strokes) {
    cairo_new_sub_path(cr_);
    for (size_t i = 0; i + 1 < stroke.size(); i += 2) {
      cairo_line_to(cr_, stroke[i] - '0', stroke[i + 1] - '0');
    }
  }
}

// Letters are lines in the middle of their width: shifted by half of it they are sharp.
void Painter::Text() {
  std::string text = Word(4);
  for (size_t i = 5; i < Count(); ++i) text += " " + Word(i);
  const double size = Number(3);
  cairo_save(cr_);
  const double left = Number(1) - (TextWidth(text) * size + pen_) / 2;
  cairo_translate(cr_, std::round(left) + pen_ / 2, Number(2) + pen_ / 2);
  cairo_scale(cr_, size, size);
  for (const char character : text) {
    const Glyph *glyph = GlyphOf(character);
    if (glyph == nullptr) {
      throw DescriptionError(step_->line, std::string("no glyph for ") + character);
    }
    DrawGlyph(*glyph);
    cairo_translate(cr_, glyph->width + kGlyphGap, 0);
  }
  cairo_restore(cr_);
  StrokePath(Word(0));
}

}  // namespace

Image Draw(const Picture &picture, const std::map<std::string, unsigned> &colours, int scale) {
  Painter painter(picture, colours, scale);
  for (const Step &step : picture.steps) painter.Take(step);
  return painter.Finish();
}

}  // namespace kpx::pixmaps
