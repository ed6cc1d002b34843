#include "help.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <string>
#include <vector>

#include "built_ins.h"
#include "descriptions.h"
#include "library.h"
#include "style.h"

namespace saish {

namespace {

/// A command with its description in one line.
struct Line {
  std::string name;
  std::string summary;
};

std::string lower(std::string_view text) {
  std::string result(text);
  for (char& c : result) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return result;
}

std::string padded(std::string_view text, std::size_t length) {
  return std::string(text) + std::string(length > text.size() ? length - text.size() : 0, ' ');
}

/// Prints a text after a lead, wrapped at the terminal's width; all lines are indented like the first.
void print_wrapped(const std::string& lead, std::string_view text) {
  std::string line = lead;
  bool begun = false;
  while (!text.empty()) {
    const std::string_view word = text.substr(0, text.find(' '));
    text.remove_prefix(std::min(word.size() + 1, text.size()));
    if (begun && style::width() != 0 && line.size() + 1 + word.size() > style::width()) {
      std::printf("%s\n", line.c_str());
      line.assign(lead.size(), ' ');
      begun = false;
    }
    line += (begun ? " " : "") + std::string(word);
    begun = true;
  }
  line.erase(line.find_last_not_of(' ') + 1);
  std::printf("%s\n", line.c_str());
}

/// One line for each, cut at the terminal's width.
void print_lines(const std::vector<Line>& lines) {
  std::size_t widest = 0;
  for (const Line& line : lines) widest = std::max(widest, line.name.size());
  for (const Line& line : lines) {
    std::string text = "  " + padded(line.name, widest) + "  " + line.summary;
    constexpr std::string_view rest = "...";
    if (const std::size_t width = style::width(); width > rest.size() && text.size() > width)
      text = text.substr(0, width - rest.size()) + std::string(rest);
    std::printf("%s\n", text.c_str());
  }
}

/// Names in columns, as many as fit the terminal's width.
template <class Names>
void print_columns(const Names& names) {
  constexpr std::size_t usual_width = 80;
  const std::size_t width = style::width() != 0 ? style::width() : usual_width;
  std::size_t column = 0;  // with two spaces before it
  for (const auto& name : names) column = std::max(column, std::size(name) + 2);
  const std::size_t columns = std::max<std::size_t>(width / column, 1);
  const std::size_t rows = (names.size() + columns - 1) / columns;
  for (std::size_t row = 0; row < rows; ++row) {
    std::string line;
    for (std::size_t i = row; i < names.size(); i += rows) line += padded("  " + std::string(names[i]), column);
    line.erase(line.find_last_not_of(' ') + 1);
    std::printf("%s\n", line.c_str());
  }
}

std::vector<Line> lines_of_built_ins() {
  std::vector<Line> lines;
  for (const BuiltIn& built_in : built_ins()) lines.push_back({built_in.usage, built_in.summary});
  return lines;
}

void print_overview() {
  std::vector<std::string_view> names;
  for (const BuiltIn& built_in : built_ins()) names.emplace_back(built_in.name);
  std::sort(names.begin(), names.end());
  print_wrapped("", "Commands of the shell; \"help shell\" tells what each does:");
  print_columns(names);
  print_wrapped("", "Families of the library's functions; \"help FAMILY\" lists one:");
  print_columns(families());
  print_wrapped("", "\"help NAME\" tells about a command, \"help WORD\" finds some, \"help all\" lists all.");
}

void print_all() {
  std::printf("Commands of the shell:\n");
  print_lines(lines_of_built_ins());
  std::printf("\nFunctions of the library; help NAME tells more:\n");
  std::vector<Line> lines;
  for (const Function& function : functions()) lines.push_back({function.name, function.summary});
  print_lines(lines);
}

std::string constants_text(std::string_view enumeration) {
  std::string result;
  for (const std::string_view name : constants_of(enumeration))
    result += (result.empty() ? "" : ", ") + std::string(name);
  return result;
}

/// A line for each field of a record: its name, its type, and what sai.h says about it; its constants below.
void print_fields(std::string_view record, std::span<const Field> fields) {
  std::size_t widest_name = 0;
  std::size_t widest_type = 0;
  for (const Field& field : fields) {
    widest_name = std::max(widest_name, std::string_view(field.name).size());
    widest_type = std::max(widest_type, std::string_view(field.type).size());
  }
  for (const Field& field : fields) {
    const Note& said = note(record, field.name);
    const std::string lead = "    " + padded(field.name, widest_name) + "  " + padded(field.type, widest_type) + "  ";
    print_wrapped(lead, said.comment);
    if (const std::string names = constants_text(said.enumeration); !names.empty())
      print_wrapped(std::string(lead.size(), ' '), names);
  }
}

void print_record(const std::string& name, std::string_view record, std::span<const Field> fields) {
  if (fields.empty()) return;
  std::printf("  %s is {field=value, ...} of\n", name.c_str());
  print_fields(record, fields);
}

void print_about(const BuiltIn& built_in, const std::string& tables) {
  std::printf("%s\n", built_in.usage);
  print_wrapped("", built_in.summary);
  if (std::string_view(built_in.usage).find(" TABLE") != std::string_view::npos) print_wrapped("  TABLE: ", tables);
  print_record("FRAME", "", built_in.fields);
  for (const char* const note : built_in.notes) print_wrapped("  ", note);
}

void print_about(const Function& function) {
  print_wrapped("", function.prototype);
  print_wrapped("", function.summary);
  print_wrapped("", "Here: " + usage(function));
  for (const Parameter& parameter : function.parameters) {
    const Note& said = note(function.name, parameter.name);
    if (!parameter.fields.empty())
      print_record(parameter.name, said.type, parameter.fields);
    else if (const std::string names = constants_text(said.enumeration); !names.empty())
      print_wrapped("  " + std::string(parameter.name) + ": ", names);
  }
}

bool print_family(const std::string& name) {
  std::vector<Line> lines;
  for (const Function& function : functions())
    if (lower(family_of(function.name)) == name) lines.push_back({function.name, function.summary});
  print_lines(lines);
  return !lines.empty();
}

bool print_found(const Words& words) {
  const auto has_all = [&](std::string text) {
    text = lower(text);
    return std::all_of(words.begin(), words.end(),
                       [&](const std::string& word) { return text.find(lower(word)) != std::string::npos; });
  };
  std::vector<Line> lines;
  for (const BuiltIn& built_in : built_ins())
    if (has_all(std::string(built_in.usage) + ' ' + built_in.summary))
      lines.push_back({built_in.usage, built_in.summary});
  for (const Function& function : functions())
    if (has_all(std::string(function.name) + ' ' + function.summary + ' ' + std::string(family_of(function.name))))
      lines.push_back({function.name, function.summary});
  print_lines(lines);
  return !lines.empty();
}

}  // namespace

void print_help(const Words& words, const std::string& tables) {
  if (words.empty()) return print_overview();
  std::string name;
  for (const std::string& word : words) name += (name.empty() ? "" : " ") + word;
  if (name == help_on_all) return print_all();
  if (name == help_on_shell) return print_lines(lines_of_built_ins());
  if (const BuiltIn* built_in = find_built_in(name)) return print_about(*built_in, tables);
  if (const Function* function = find_function(name)) return print_about(*function);
  if (!print_family(lower(name)) && !print_found(words)) throw unknown_command(name);
}

}  // namespace saish
