// Telling text from PostScript that does not begin with "%!".
#include <algorithm>
#include <cctype>
#include <iterator>
#include <set>
#include <string_view>

#include "jobkind.h"

namespace kpx::filter {

namespace {

// Names of PostScript that are words of no other text.
constexpr std::string_view kSigns[] = {"arcto",
                                       "ashow",
                                       "awidthshow",
                                       "cleartomark",
                                       "clippath",
                                       "closepath",
                                       "colorimage",
                                       "copypage",
                                       "counttomark",
                                       "cshow",
                                       "currentdict",
                                       "currentfile",
                                       "currentpagedevice",
                                       "currentpoint",
                                       "curveto",
                                       "cvi",
                                       "cvlit",
                                       "cvn",
                                       "cvr",
                                       "cvrs",
                                       "cvs",
                                       "cvx",
                                       "definefont",
                                       "defineresource",
                                       "eexec",
                                       "eoclip",
                                       "eofill",
                                       "erasepage",
                                       "errordict",
                                       "exch",
                                       "execform",
                                       "exitserver",
                                       "filenameforall",
                                       "findfont",
                                       "findresource",
                                       "flushfile",
                                       "getinterval",
                                       "globaldict",
                                       "glyphshow",
                                       "grestore",
                                       "grestoreall",
                                       "gsave",
                                       "idiv",
                                       "ifelse",
                                       "imagemask",
                                       "initgraphics",
                                       "initmatrix",
                                       "kshow",
                                       "lineto",
                                       "makefont",
                                       "moveto",
                                       "newpath",
                                       "nulldevice",
                                       "pathbbox",
                                       "pstack",
                                       "putinterval",
                                       "rcurveto",
                                       "readhexstring",
                                       "readstring",
                                       "rectclip",
                                       "rectfill",
                                       "rectstroke",
                                       "rlineto",
                                       "rmoveto",
                                       "scalefont",
                                       "selectfont",
                                       "serverdict",
                                       "setcachedevice",
                                       "setcmykcolor",
                                       "setcolor",
                                       "setcolorspace",
                                       "setdash",
                                       "setdevparams",
                                       "setfont",
                                       "setglobal",
                                       "setgray",
                                       "sethalftone",
                                       "setlinecap",
                                       "setlinejoin",
                                       "setlinewidth",
                                       "setmatrix",
                                       "setpagedevice",
                                       "setpageparams",
                                       "setrgbcolor",
                                       "setscreen",
                                       "setsystemparams",
                                       "settransfer",
                                       "setuserparams",
                                       "showpage",
                                       "startjob",
                                       "statusdict",
                                       "stringwidth",
                                       "systemdict",
                                       "userdict",
                                       "widthshow",
                                       "xshow",
                                       "xyshow",
                                       "yshow"};

// Other names that an interpreter knows.
constexpr std::string_view kOperators[] = {"#copies",
                                           "=",
                                           "==",
                                           "[",
                                           "]",
                                           "a3",
                                           "a4",
                                           "a5",
                                           "abs",
                                           "add",
                                           "aload",
                                           "anchorsearch",
                                           "and",
                                           "arc",
                                           "arcn",
                                           "arct",
                                           "array",
                                           "astore",
                                           "atan",
                                           "b5",
                                           "begin",
                                           "bind",
                                           "bitshift",
                                           "bytesavailable",
                                           "ceiling",
                                           "clear",
                                           "clip",
                                           "closefile",
                                           "concat",
                                           "concatmatrix",
                                           "copy",
                                           "cos",
                                           "count",
                                           "countdictstack",
                                           "countexecstack",
                                           "currentfont",
                                           "currentglobal",
                                           "currentmatrix",
                                           "def",
                                           "defaultmatrix",
                                           "deletefile",
                                           "dict",
                                           "dictstack",
                                           "div",
                                           "dtransform",
                                           "dup",
                                           "echo",
                                           "end",
                                           "eq",
                                           "exec",
                                           "execstack",
                                           "executeonly",
                                           "exit",
                                           "exp",
                                           "false",
                                           "file",
                                           "fill",
                                           "filter",
                                           "flattenpath",
                                           "floor",
                                           "flush",
                                           "FontDirectory",
                                           "for",
                                           "forall",
                                           "gcheck",
                                           "ge",
                                           "get",
                                           "gt",
                                           "handleerror",
                                           "idtransform",
                                           "if",
                                           "image",
                                           "index",
                                           "internaldict",
                                           "invertmatrix",
                                           "itransform",
                                           "known",
                                           "languagelevel",
                                           "le",
                                           "ledger",
                                           "legal",
                                           "length",
                                           "letter",
                                           "ln",
                                           "load",
                                           "log",
                                           "loop",
                                           "lt",
                                           "maxlength",
                                           "mark",
                                           "matrix",
                                           "mod",
                                           "mul",
                                           "ne",
                                           "neg",
                                           "noaccess",
                                           "not",
                                           "note",
                                           "null",
                                           "or",
                                           "packedarray",
                                           "pop",
                                           "print",
                                           "product",
                                           "prompt",
                                           "put",
                                           "quit",
                                           "rand",
                                           "rcheck",
                                           "read",
                                           "readline",
                                           "readonly",
                                           "realtime",
                                           "renamefile",
                                           "repeat",
                                           "restore",
                                           "revision",
                                           "roll",
                                           "rotate",
                                           "round",
                                           "rrand",
                                           "run",
                                           "save",
                                           "scale",
                                           "search",
                                           "serialnumber",
                                           "show",
                                           "sin",
                                           "sqrt",
                                           "srand",
                                           "stack",
                                           "start",
                                           "status",
                                           "stop",
                                           "stopped",
                                           "store",
                                           "string",
                                           "stroke",
                                           "sub",
                                           "token",
                                           "transform",
                                           "translate",
                                           "true",
                                           "truncate",
                                           "type",
                                           "undef",
                                           "undefinefont",
                                           "usertime",
                                           "version",
                                           "vmreclaim",
                                           "vmstatus",
                                           "wcheck",
                                           "where",
                                           "write",
                                           "writehexstring",
                                           "writestring",
                                           "xcheck",
                                           "xor"};

template <size_t kCount>
bool IsOneOf(const std::string_view (&names)[kCount], std::string_view name) {
  return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

bool IsBlank(char c) {
  return std::string_view("\0\t\n\f\r ", 6).find(c) != std::string_view::npos;
}

bool IsRegular(char c) {
  return !IsBlank(c) && std::string_view("()<>[]{}/%").find(c) == std::string_view::npos;
}

// A number as PostScript writes it; its radix form ("16#FF") too.
bool IsNumber(std::string_view token) {
  const auto in_number = [](char c) {
    return (c >= '0' && c <= '9') || std::string_view("+-.eE").find(c) != std::string_view::npos;
  };
  const size_t radix = token.find('#');
  if (radix != std::string_view::npos && radix > 0) token = token.substr(0, radix);
  return std::any_of(token.begin(), token.end(), [](char c) { return c >= '0' && c <= '9'; }) &&
         std::all_of(token.begin(), token.end(), in_number);
}

// Only characters that texts are made of.
bool LooksLikeText(std::string_view bytes) {
  return std::none_of(bytes.begin(), bytes.end(), [](char c) {
    return (c >= 0 && c < ' ' &&
            std::string_view("\004\b\t\n\f\r\032\033").find(c) == std::string_view::npos) ||
           c == 0x7F;
  });
}

// Whether a line begins as the document conventions have it: "%!", "%%Page".
bool HasConventions(std::string_view text) {
  for (size_t at = 0; (at = text.find('%', at)) != std::string_view::npos; ++at) {
    const bool line_start = at == 0 || text[at - 1] == '\n' || text[at - 1] == '\r';
    if (!line_start || at + 2 >= text.size()) continue;
    if (text[at + 1] == '!') return true;
    if (text[at + 1] == '%' && std::isupper(static_cast<unsigned char>(text[at + 2])) != 0) {
      return true;
    }
  }
  return false;
}

// Reads the tokens of a text as an interpreter would.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : text_(text) {
    while (!seen_sign_ && at_ < text_.size()) Step();
  }

  bool seen_sign() const { return seen_sign_; }
  bool seen_token() const { return seen_token_; }
  bool seen_name() const { return seen_name_; }
  // A name to be run that is unknown when its turn comes.
  bool seen_unknown() const { return seen_unknown_; }

 private:
  void Step();
  void Past(char end) { at_ = std::min(text_.find(end, at_), text_.size() - 1) + 1; }
  void Comment() { at_ = std::min(text_.find_first_of("\r\n", at_), text_.size()); }
  void String();
  std::string_view Regular();
  void Name(std::string_view name);

  std::string_view text_;
  size_t at_ = 0;
  int depth_ = 0;  // of procedures
  std::set<std::string_view> literals_;
  bool seen_sign_ = false, seen_token_ = false, seen_name_ = false, seen_unknown_ = false;
};

void Scanner::Step() {
  const char c = text_[at_];
  if (IsBlank(c)) {
    ++at_;
    return;
  }
  if (c == '%') {
    Comment();
    return;
  }
  seen_token_ = true;
  if (c == '(') {
    String();
  } else if (c == '<' && text_.substr(at_ + 1, 1) != "<") {
    Past('>');
  } else if (c == '/') {
    ++at_;
    literals_.insert(Regular());
  } else if (c == '{' || c == '}') {
    depth_ += c == '{' ? 1 : -1;
    ++at_;
  } else if (IsRegular(c)) {
    Name(Regular());
  } else {
    ++at_;
  }
}

void Scanner::String() {
  int open = 0;
  for (; at_ < text_.size(); ++at_) {
    if (text_[at_] == '\\') {
      ++at_;
    } else if (text_[at_] == '(') {
      ++open;
    } else if (text_[at_] == ')' && --open == 0) {
      break;
    }
  }
  at_ = std::min(at_ + 1, text_.size());
}

std::string_view Scanner::Regular() {
  const size_t start = at_;
  while (at_ < text_.size() && IsRegular(text_[at_])) ++at_;
  return text_.substr(start, at_ - start);
}

void Scanner::Name(std::string_view name) {
  if (IsNumber(name)) return;
  seen_name_ = true;
  // Of what is only defined, "def" tells.
  seen_sign_ = IsOneOf(kSigns, name) || (name == "def" && !literals_.empty());
  const bool known = IsOneOf(kOperators, name) || literals_.contains(name);
  if (depth_ <= 0 && !known) seen_unknown_ = true;
}

}  // namespace

bool IsClearlyText(std::string_view start, bool whole) {
  if (!LooksLikeText(start) || HasConventions(start)) return false;
  const Scanner scanner(start);
  if (scanner.seen_sign()) return false;
  return scanner.seen_unknown() || (whole && scanner.seen_token() && !scanner.seen_name());
}

}  // namespace kpx::filter
