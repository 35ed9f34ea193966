#include "declaredfile.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

#include "cmessages.h"
#include "queueform.h"
#include "queuesettings.h"
#include "textline.h"

namespace kpx::ctl {

namespace {

using Value = nlohmann::json;
using Path = std::vector<std::string>;

// The text that a setting of the file stands for, empty for null; nothing when it is neither text,
// number nor truth.
std::optional<std::string> TextOfValue(const Value &value) {
  if (value.is_null()) return "";
  if (value.is_string()) return value.get<std::string>();
  if (value.is_boolean()) return value.get<bool>() ? "True" : "False";
  if (value.is_number()) return value.dump();
  return std::nullopt;
}

// Reads one file; the first fault ends it.
class Reader {
 public:
  explicit Reader(const std::string &text) : text_(text) {}

  std::variant<DeclaredState, DeclaredFault> Read() {
    if (!Parse() || !ReadWhole()) return fault_;
    return std::move(state_);
  }

 private:
  bool Fail(const Path &path, const std::string &reason) {
    fault_ = {LineOfMember(text_, path), reason};
    return false;
  }
  bool FailKind(const Path &path) {
    return Fail(path, G_Message("CTL_JSON_VALUE", {path.empty() ? "" : path.back()}));
  }

  bool Parse() {
    try {
      json_ = Value::parse(text_);
    } catch (const Value::parse_error &error) {
      const auto end =
          text_.begin() + static_cast<std::ptrdiff_t>(std::min(error.byte, text_.size()));
      const std::string what = error.what();
      const size_t start = what.find(": ");
      fault_ = {
          static_cast<int>(std::count(text_.begin(), end, '\n')) + 1,
          G_Message("CTL_JSON_BAD", {start == std::string::npos ? what : what.substr(start + 2)})};
      return false;
    }
    // The reader takes the last of several members of one name.
    const Path twice = MemberThatStandsTwice(text_);
    return twice.empty() || Fail(twice, G_Message("CTL_JSON_TWICE", {twice.back()}));
  }

  // Whether `object` is one and has no member but `known`.
  bool HasOnly(const Value &object, const Path &path, const std::vector<std::string> &known) {
    if (!object.is_object()) return FailKind(path);
    for (const auto &[key, value] : object.items()) {
      if (std::find(known.begin(), known.end(), key) != known.end()) continue;
      Path member = path;
      member.push_back(key);
      return Fail(member, G_Message("CTL_JSON_MEMBER", {key}));
    }
    return true;
  }

  bool ReadWhole() {
    if (!HasOnly(json_, {}, {"name", "defaults", "groups", "queues", "users"})) return false;
    if (json_.contains("name")) {
      if (!json_["name"].is_string()) return FailKind({"name"});
      state_.name = json_["name"];
    }
    return ReadDefaults() && ReadQueues() && ReadUsers();
  }

  bool ReadDefaults() {
    if (json_.contains("defaults") && !ReadEntry(json_["defaults"], {"defaults"}, defaults_)) {
      return false;
    }
    if (!json_.contains("groups")) return true;
    if (!json_["groups"].is_object()) return FailKind({"groups"});
    for (const auto &[name, entry] : json_["groups"].items()) {
      if (!ReadEntry(entry, {"groups", name}, groups_[name])) return false;
    }
    return true;
  }

  bool ReadQueues() {
    if (!json_.contains("queues")) return true;
    if (!json_["queues"].is_object()) return FailKind({"queues"});
    for (const auto &[name, entry] : json_["queues"].items()) {
      DeclaredQueue queue{name, defaults_.fields, defaults_.settings};
      const Path path = {"queues", name};
      if (!AddGroups(entry, path, queue) || !ReadEntry(entry, path, queue)) return false;
      std::erase_if(queue.settings, [](const auto &setting) { return setting.second.empty(); });
      queue.fields.emplace("type", "postscript");
      for (const QueueField &field : QueueFields()) {
        if (queue.fields.contains(field.name)) continue;
        return Fail(path, G_Message("CTL_JSON_LACKS", {name, field.name}));
      }
      state_.queues.push_back(std::move(queue));
    }
    return true;
  }

  bool AddGroups(const Value &entry, const Path &path, DeclaredQueue &queue) {
    if (!entry.is_object() || !entry.contains("group")) return true;
    const Value names = entry["group"].is_array() ? entry["group"] : Value::array({entry["group"]});
    for (const Value &name : names) {
      const Path member = {path[0], path[1], "group"};
      if (!name.is_string()) return FailKind(member);
      const auto group = groups_.find(name.get<std::string>());
      if (group == groups_.end()) {
        return Fail(member, G_Message("CTL_JSON_GROUP", {name.get<std::string>()}));
      }
      for (const auto &[key, value] : group->second.fields) queue.fields[key] = value;
      for (const auto &[key, value] : group->second.settings) queue.settings[key] = value;
    }
    return true;
  }

  // Adds what an entry of defaults, groups or queues says to `queue`.
  bool ReadEntry(const Value &entry, const Path &path, DeclaredQueue &queue) {
    if (!HasOnly(entry, path,
                 {"group", "printer", "type", "address", "options", "papers", "media"})) {
      return false;
    }
    for (const QueueField &field : QueueFields()) {
      if (!entry.contains(field.name)) continue;
      const Value &value = entry[field.name];
      if (!value.is_string()) return FailKind(Below(path, field.name));
      queue.fields[field.name] = value;
    }
    return ReadMembers(entry, path, "options", queue) &&
           ReadMembers(entry, path, "papers", queue) && ReadMembers(entry, path, "media", queue);
  }

  static Path Below(Path path, const std::string &member) {
    path.push_back(member);
    return path;
  }

  // The members of one of an entry's objects; null takes away what a group or the defaults say.
  bool ReadMembers(const Value &entry, const Path &path, const char *member, DeclaredQueue &queue) {
    if (!entry.contains(member)) return true;
    const Value &object = entry[member];
    const Path below = Below(path, member);
    if (!object.is_object()) return FailKind(below);
    const bool is_paper = std::string_view(member) == "papers";
    const std::string prefix = is_paper                              ? std::string(kPaperPrefix)
                               : std::string_view(member) == "media" ? std::string(kMediaPrefix)
                                                                     : "";
    for (const auto &[key, value] : object.items()) {
      const std::string setting = prefix.empty() ? OuterKey(key) : prefix + key;
      const std::optional<std::string> text = is_paper ? PaperOfValue(value) : TextOfValue(value);
      if (!text) return FailKind(Below(below, key));
      queue.settings[setting] = *text;
    }
    return true;
  }

  // {"width", "length"} in points, or "210x297mm"; empty for null.
  static std::optional<std::string> PaperOfValue(const Value &value) {
    if (value.is_null()) return "";
    if (value.is_string()) return value.get<std::string>();
    if (!value.is_object() || value.size() != 2) return std::nullopt;
    const Value width = value.value("width", Value()), length = value.value("length", Value());
    if (!width.is_number() || !length.is_number()) return std::nullopt;
    return WholeNumber(width) + "x" + WholeNumber(length) + "pt";
  }

  bool ReadUsers() {
    if (!json_.contains("users")) return true;
    if (!json_["users"].is_object()) return FailKind({"users"});
    for (const auto &[user, queues] : json_["users"].items()) {
      if (!queues.is_object()) return FailKind({"users", user});
      for (const auto &[queue, settings] : queues.items()) {
        const Path path = {"users", user, queue};
        if (!settings.is_object()) return FailKind(path);
        DeclaredUserFile file{user, queue, {}};
        for (const auto &[key, value] : settings.items()) {
          if (!value.is_string()) return FailKind(Below(path, key));
          file.settings[OuterKey(key)] = value;
        }
        state_.user_files.push_back(std::move(file));
      }
    }
    return true;
  }

  const std::string &text_;
  Value json_;
  DeclaredQueue defaults_;
  std::map<std::string, DeclaredQueue> groups_;
  DeclaredState state_;
  DeclaredFault fault_ = {};
};

}  // namespace

std::variant<DeclaredState, DeclaredFault> ReadDeclared(const std::string &text) {
  return Reader(text).Read();
}

}  // namespace kpx::ctl
