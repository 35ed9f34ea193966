#include "fontfaces.h"

#include <fontconfig/fontconfig.h>
#include <hb-ot.h>
#include <hb.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <utility>

namespace kpx::filter {

namespace {

constexpr int kUnits = 1000;  // that a font size has

template <typename T, void (*kDestroy)(T *)>
struct Destroy {
  void operator()(T *thing) const { kDestroy(thing); }
};
using Pattern = std::unique_ptr<FcPattern, Destroy<FcPattern, FcPatternDestroy>>;
using FontSet = std::unique_ptr<FcFontSet, Destroy<FcFontSet, FcFontSetDestroy>>;
using Blob = std::unique_ptr<hb_blob_t, Destroy<hb_blob_t, hb_blob_destroy>>;
using Face = std::unique_ptr<hb_face_t, Destroy<hb_face_t, hb_face_destroy>>;
using Font = std::unique_ptr<hb_font_t, Destroy<hb_font_t, hb_font_destroy>>;
using Buffer = std::unique_ptr<hb_buffer_t, Destroy<hb_buffer_t, hb_buffer_destroy>>;
using DrawFunctions =
    std::unique_ptr<hb_draw_funcs_t, Destroy<hb_draw_funcs_t, hb_draw_funcs_destroy>>;

struct FamilyName {
  std::string_view printers, hosts, generic;
};

// The families of every PostScript printer, by the names under which Fontconfig knows fonts of the
// same widths.
constexpr FamilyName kFamilies[] = {{"AvantGarde", "ITC Avant Garde Gothic", "sans-serif"},
                                    {"Bookman", "ITC Bookman", "serif"},
                                    {"Courier", "Courier", "monospace"},
                                    {"Helvetica-Narrow", "Helvetica Narrow", "sans-serif"},
                                    {"Helvetica", "Helvetica", "sans-serif"},
                                    {"NewCenturySchlbk", "New Century Schoolbook", "serif"},
                                    {"Palatino", "Palatino", "serif"},
                                    {"Times", "Times", "serif"},
                                    {"ZapfChancery", "ITC Zapf Chancery", "serif"}};

FcChar8 *Bytes(const char *text) {
  return reinterpret_cast<FcChar8 *>(const_cast<char *>(text));  // as Fontconfig takes texts
}

Pattern PatternOf(const FontLook &look) {
  Pattern pattern(FcPatternCreate());
  if (!look.family.empty()) {
    FcPatternAddString(pattern.get(), FC_FAMILY, Bytes(look.family.c_str()));
  }
  FcPatternAddString(pattern.get(), FC_FAMILY, Bytes(look.generic.c_str()));
  if (look.is_bold) FcPatternAddInteger(pattern.get(), FC_WEIGHT, FC_WEIGHT_BOLD);
  if (look.is_slanted) FcPatternAddInteger(pattern.get(), FC_SLANT, FC_SLANT_OBLIQUE);
  FcPatternAddBool(pattern.get(), FC_OUTLINE, FcTrue);
  FcPatternAddBool(pattern.get(), FC_COLOR, FcFalse);
  FcConfigSubstitute(nullptr, pattern.get(), FcMatchPattern);
  FcDefaultSubstitute(pattern.get());
  return pattern;
}

// Whether HarfBuzz draws the font's glyphs.
bool IsDrawable(FcPattern *font) {
  FcBool is_colour = FcFalse, is_outline = FcFalse;
  FcPatternGetBool(font, FC_COLOR, 0, &is_colour);
  FcPatternGetBool(font, FC_OUTLINE, 0, &is_outline);
  FcChar8 *format = nullptr;
  if (FcPatternGetString(font, FC_FONTFORMAT, 0, &format) != FcResultMatch) return false;
  const std::string_view name = reinterpret_cast<const char *>(format);
  return is_outline && !is_colour && (name == "TrueType" || name == "CFF");
}

void AppendNumber(float value, std::string *text) {
  char buffer[16];
  const auto end = std::to_chars(std::begin(buffer), std::end(buffer), std::lround(value)).ptr;
  text->append(buffer, end);
  *text += ' ';
}

std::string *PathOf(void *data) { return static_cast<std::string *>(data); }

void MoveTo(hb_draw_funcs_t *, void *data, hb_draw_state_t *, float x, float y, void *) {
  AppendNumber(x, PathOf(data));
  AppendNumber(y, PathOf(data));
  *PathOf(data) += "m ";
}

void LineTo(hb_draw_funcs_t *, void *data, hb_draw_state_t *, float x, float y, void *) {
  AppendNumber(x, PathOf(data));
  AppendNumber(y, PathOf(data));
  *PathOf(data) += "l ";
}

// Quadratic curves come here too: HarfBuzz makes cubic ones of them.
void CurveTo(hb_draw_funcs_t *, void *data, hb_draw_state_t *, float x1, float y1, float x2,
             float y2, float x, float y, void *) {
  for (const float value : {x1, y1, x2, y2, x, y}) AppendNumber(value, PathOf(data));
  *PathOf(data) += "c\n";
}

void Close(hb_draw_funcs_t *, void *data, hb_draw_state_t *, void *) { *PathOf(data) += "h\n"; }

DrawFunctions NewDrawFunctions() {
  DrawFunctions functions(hb_draw_funcs_create());
  hb_draw_funcs_set_move_to_func(functions.get(), MoveTo, nullptr, nullptr);
  hb_draw_funcs_set_line_to_func(functions.get(), LineTo, nullptr, nullptr);
  hb_draw_funcs_set_cubic_to_func(functions.get(), CurveTo, nullptr, nullptr);
  hb_draw_funcs_set_close_path_func(functions.get(), Close, nullptr, nullptr);
  return functions;
}

}  // namespace

FontLook LookOf(std::string_view postscript_name) {
  FontLook look;
  for (const FamilyName &family : kFamilies) {
    if (!postscript_name.starts_with(family.printers)) continue;
    look.family = family.hosts;
    look.generic = family.generic;
    break;
  }
  if (look.family.empty()) {
    look.family = postscript_name.substr(0, postscript_name.find('-'));
    look.generic = "sans-serif";
  }
  const auto has = [&](const char *word) {
    return postscript_name.find(word) != std::string_view::npos;
  };
  look.is_bold = has("Bold") || has("Demi");
  look.is_slanted = has("Oblique") || has("Italic");
  return look;
}

// The fonts that Fontconfig has found.
struct FaceList {
  struct Opened {
    Font font;
    bool failed = false;
  };

  FontLook look;
  FontSet set;
  std::vector<FcPattern *> patterns;  // of the set, those that can be drawn
  std::vector<Opened> opened;
  DrawFunctions draw;

  void Find();
  bool Has(size_t face, std::u32string_view text);
  hb_font_t *FontOf(size_t face);
};

// The list of all fonts, made when the first one is needed: most jobs need none.
void FaceList::Find() {
  if (set != nullptr) return;
  FcResult result = FcResultNoMatch;
  const Pattern pattern = PatternOf(look);
  set.reset(FcFontSort(nullptr, pattern.get(), FcTrue, nullptr, &result));
  if (set == nullptr) set.reset(FcFontSetCreate());
  std::copy_if(set->fonts, set->fonts + set->nfont, std::back_inserter(patterns), IsDrawable);
  opened.resize(patterns.size());
  draw = NewDrawFunctions();
}

bool FaceList::Has(size_t face, std::u32string_view text) {
  FcCharSet *characters = nullptr;
  if (FcPatternGetCharSet(patterns[face], FC_CHARSET, 0, &characters) != FcResultMatch)
    return false;
  return std::all_of(text.begin(), text.end(),
                     [&](char32_t character) {
                       return FcCharSetHasChar(characters, character) == FcTrue;
                     }) &&
         FontOf(face) != nullptr;
}

hb_font_t *FaceList::FontOf(size_t face) {
  Opened &entry = opened[face];
  if (entry.font != nullptr || entry.failed) return entry.font.get();
  FcChar8 *file = nullptr;
  int index = 0;
  FcPatternGetInteger(patterns[face], FC_INDEX, 0, &index);
  if (FcPatternGetString(patterns[face], FC_FILE, 0, &file) == FcResultMatch) {
    const Blob blob(hb_blob_create_from_file_or_fail(reinterpret_cast<const char *>(file)));
    const Face opened_face(blob == nullptr ? nullptr : hb_face_create(blob.get(), index & 0xFFFF));
    if (opened_face != nullptr && hb_face_get_glyph_count(opened_face.get()) > 0) {
      entry.font.reset(hb_font_create(opened_face.get()));
      hb_font_set_scale(entry.font.get(), kUnits, kUnits);
    }
  }
  entry.failed = entry.font == nullptr;
  return entry.font.get();
}

FontFaces::FontFaces(FontLook look) : faces_(std::make_unique<FaceList>()) {
  faces_->look = std::move(look);
}

FontFaces::~FontFaces() = default;

std::optional<size_t> FontFaces::FaceFor(std::u32string_view text) {
  faces_->Find();
  for (size_t face = 0; face < faces_->patterns.size(); ++face) {
    if (faces_->Has(face, text)) return face;
  }
  return std::nullopt;
}

uint32_t FontFaces::GlyphOf(size_t face, char32_t character) {
  hb_codepoint_t glyph = 0;
  hb_font_get_nominal_glyph(faces_->FontOf(face), character, &glyph);
  return glyph;
}

GlyphShape FontFaces::ShapeOf(size_t face, uint32_t glyph) {
  hb_font_t *font = faces_->FontOf(face);
  GlyphShape shape;
  shape.advance = hb_font_get_glyph_h_advance(font, glyph);
  hb_font_get_glyph_shape(font, glyph, faces_->draw.get(), &shape.path);
  hb_glyph_extents_t extents{};
  if (hb_font_get_glyph_extents(font, glyph, &extents)) {
    // A unit more on each side, for the rounding.
    shape.box = {extents.x_bearing - 1, extents.y_bearing + extents.height - 1,
                 extents.x_bearing + extents.width + 1, extents.y_bearing + 1};
  }
  return shape;
}

std::vector<ShapedGlyph> FontFaces::Shaped(size_t face, std::u32string_view text,
                                           bool is_from_right) {
  const Buffer buffer(hb_buffer_create());
  hb_buffer_add_codepoints(buffer.get(), reinterpret_cast<const uint32_t *>(text.data()),
                           static_cast<int>(text.size()), 0, static_cast<int>(text.size()));
  hb_buffer_guess_segment_properties(buffer.get());
  hb_buffer_set_direction(buffer.get(), is_from_right ? HB_DIRECTION_RTL : HB_DIRECTION_LTR);
  hb_shape(faces_->FontOf(face), buffer.get(), nullptr, 0);
  unsigned count = 0;
  const hb_glyph_info_t *infos = hb_buffer_get_glyph_infos(buffer.get(), &count);
  const hb_glyph_position_t *places = hb_buffer_get_glyph_positions(buffer.get(), &count);
  std::vector<ShapedGlyph> glyphs;
  for (unsigned i = 0; i < count; ++i) {
    glyphs.push_back(
        {infos[i].codepoint, places[i].x_advance, places[i].x_offset, places[i].y_offset});
  }
  return glyphs;
}

std::optional<int> FontFaces::AdvanceOf(char32_t character) {
  const std::optional<size_t> face = FaceFor({&character, 1});
  if (!face) return std::nullopt;
  return hb_font_get_glyph_h_advance(faces_->FontOf(*face), GlyphOf(*face, character));
}

}  // namespace kpx::filter
