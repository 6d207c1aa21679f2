#include "platform/simulated/Words.h"

#include <sstream>
#include <stdexcept>
#include <utility>

namespace simulated {

namespace {

std::vector<std::string> wordsOf(std::string_view line) {
  std::vector<std::string> words;
  std::string word;
  bool isQuoted = false;
  for (const char character : line) {
    if (character == '"') {
      isQuoted = !isQuoted;
    } else if (character == ' ' && !isQuoted) {
      if (!word.empty()) words.push_back(std::exchange(word, {}));
      continue;
    }
    word += character;
  }
  if (!word.empty()) words.push_back(word);
  return words;
}

std::optional<double> numberOf(std::string_view text) {
  std::istringstream stream{std::string(text)};
  double number = 0;
  if (!(stream >> number) || stream.peek() != std::istringstream::traits_type::eof()) return std::nullopt;
  return number;
}

}  // namespace

std::vector<Line> linesOf(std::string_view text) {
  std::vector<Line> lines;
  std::istringstream stream{std::string(text)};
  for (std::string line; std::getline(stream, line);) {
    const std::size_t indentation = line.find_first_not_of(' ');
    if (indentation != std::string::npos) lines.push_back({indentation, wordsOf(line)});
  }
  return lines;
}

std::optional<CGPoint> pairOf(std::string_view word, char separator) {
  const std::size_t at = word.find(separator);
  if (at == std::string_view::npos) return std::nullopt;
  const auto first = numberOf(word.substr(0, at));
  const auto second = numberOf(word.substr(at + 1));
  if (!first || !second) return std::nullopt;
  return CGPointMake(*first, *second);
}

void refuse(std::string_view word, std::string_view where) {
  throw std::invalid_argument("\"" + std::string(word) + "\" means nothing in " + std::string(where));
}

}  // namespace simulated
