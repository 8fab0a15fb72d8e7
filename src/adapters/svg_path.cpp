#include "svg_path.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <numbers>
#include <stdexcept>
#include <string>

namespace lumenquest::adapters {

namespace {

using platform::CGAffineTransform;
using platform::CGPoint;
using platform::UIBezierPath;

constexpr double kPi = std::numbers::pi;

/// Beyond this no picture goes; canvases count in fixed-point numbers.
constexpr double kLargest = 1.0e5;

bool IsDigit(char c) { return '0' <= c && c <= '9'; }
bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f'; }
bool IsLetter(char c) { return ('a' <= c && c <= 'z') || ('A' <= c && c <= 'Z'); }
bool IsLower(char c) { return 'a' <= c && c <= 'z'; }
char Upper(char c) { return IsLower(c) ? static_cast<char>(c - 'a' + 'A') : c; }

[[noreturn]] void Fail(const std::string& what) { throw std::invalid_argument(what); }

/// What comes next, for a message.
std::string Next(std::string_view rest) {
  if (rest.empty()) return "the end";
  constexpr std::size_t kShown = 12;
  return "\"" + std::string(rest.substr(0, kShown)) + (rest.size() > kShown ? "...\"" : "\"");
}

}  // namespace

void SvgScanner::skipSpace() {
  while (!rest_.empty() && IsSpace(rest_.front())) rest_.remove_prefix(1);
}

void SvgScanner::SkipSeparator() {
  skipSpace();
  if (!rest_.empty() && rest_.front() == ',') {
    rest_.remove_prefix(1);
    skipSpace();
  }
}

bool SvgScanner::isAtEnd() {
  skipSpace();
  return rest_.empty();
}

char SvgScanner::letter() {
  skipSpace();
  if (rest_.empty() || !IsLetter(rest_.front())) return '\0';
  const char c = rest_.front();
  rest_.remove_prefix(1);
  return c;
}

bool SvgScanner::skip(char c) {
  skipSpace();
  if (rest_.empty() || rest_.front() != c) return false;
  rest_.remove_prefix(1);
  return true;
}

std::optional<double> SvgScanner::number() {
  const std::string_view before = rest_;
  SkipSeparator();
  std::size_t length = 0;
  const auto at = [&](std::size_t i) { return i < rest_.size() ? rest_[i] : '\0'; };
  const auto skipDigits = [&] {
    const std::size_t start = length;
    while (IsDigit(at(length))) ++length;
    return length > start;
  };
  if (at(0) == '+' || at(0) == '-') ++length;
  bool hasDigits = skipDigits();
  if (at(length) == '.' && (hasDigits || IsDigit(at(length + 1)))) {
    ++length;
    hasDigits = skipDigits() || hasDigits;
  }
  if (!hasDigits) {
    rest_ = before;
    return std::nullopt;
  }
  if (Upper(at(length)) == 'E') {
    const std::size_t mantissa = length++;
    if (at(length) == '+' || at(length) == '-') ++length;
    if (!skipDigits()) length = mantissa;
  }
  // from_chars() knows no plus sign.
  const std::size_t start = at(0) == '+' ? 1 : 0;
  double value = 0.0;
  const auto result = std::from_chars(rest_.data() + start, rest_.data() + length, value);
  if (result.ec == std::errc::result_out_of_range || std::fabs(value) > kLargest) {
    Fail("the number " + std::string(rest_.substr(0, std::min<std::size_t>(length, 40))) +
         " is out of range: at most " + std::to_string(static_cast<int>(kLargest)));
  }
  rest_.remove_prefix(length);
  return value;
}

double SvgScanner::neededNumber() {
  if (const auto value = number()) return *value;
  skipSpace();
  Fail("a number must stand where " + Next(rest_) + " is");
}

bool SvgScanner::neededFlag() {
  SkipSeparator();
  if (rest_.empty() || (rest_.front() != '0' && rest_.front() != '1')) {
    Fail("0 or 1 must stand where " + Next(rest_) + " is");
  }
  const bool flag = rest_.front() == '1';
  rest_.remove_prefix(1);
  return flag;
}

namespace {

/// The signed angle from one vector to another.
double AngleBetween(CGPoint u, CGPoint v) {
  return std::atan2(u.x * v.y - u.y * v.x, u.x * v.x + u.y * v.y);
}

/// An elliptical arc as curves of at most a quarter turn each. Appendix B.2: the centre from the
/// two end points, radii made larger where they do not reach.
void AddArc(UIBezierPath& path, CGPoint from, double rx, double ry, double rotationDegrees,
            bool isLarge, bool isSweeping, CGPoint to) {
  rx = std::fabs(rx);
  ry = std::fabs(ry);
  if (from == to) return;
  if (rx == 0.0 || ry == 0.0) {
    path.lineTo(to);
    return;
  }
  const CGAffineTransform turn = CGAffineTransform::rotation(rotationDegrees * kPi / 180.0);
  const double cosine = turn.a;
  const double sine = turn.b;

  // Half the way between the two, in the ellipse's own axes.
  const double dx = (from.x - to.x) / 2.0;
  const double dy = (from.y - to.y) / 2.0;
  const CGPoint half{cosine * dx + sine * dy, -sine * dx + cosine * dy};
  const double reach = (half.x * half.x) / (rx * rx) + (half.y * half.y) / (ry * ry);
  if (reach > 1.0) {
    rx *= std::sqrt(reach);
    ry *= std::sqrt(reach);
  }
  const double across = rx * rx * half.y * half.y + ry * ry * half.x * half.x;
  // Radii that are too small beside the distance, or the other way round, leave nothing to divide.
  if (!(across > 0.0) || !std::isfinite(across)) {
    path.lineTo(to);
    return;
  }
  const double factor = std::sqrt(std::max(0.0, rx * rx * ry * ry - across) / across) *
                        (isLarge == isSweeping ? -1.0 : 1.0);
  const CGPoint center{factor * rx * half.y / ry, -factor * ry * half.x / rx};

  const CGPoint start{(half.x - center.x) / rx, (half.y - center.y) / ry};
  const CGPoint end{(-half.x - center.x) / rx, (-half.y - center.y) / ry};
  const double startAngle = AngleBetween({1.0, 0.0}, start);
  double sweep = AngleBetween(start, end);
  if (isSweeping && sweep < 0.0) sweep += 2.0 * kPi;
  if (!isSweeping && sweep > 0.0) sweep -= 2.0 * kPi;

  // From the unit circle to the ellipse.
  const CGAffineTransform place = CGAffineTransform::scale(rx, ry).then(turn).then(
      CGAffineTransform::translation(cosine * center.x - sine * center.y + (from.x + to.x) / 2.0,
                                     sine * center.x + cosine * center.y + (from.y + to.y) / 2.0));
  const int pieces =
      std::max(1, static_cast<int>(std::ceil(std::fabs(sweep) / (kPi / 2.0) - 1e-9)));
  const double step = sweep / pieces;
  const double control = 4.0 / 3.0 * std::tan(step / 4.0);
  for (int i = 0; i < pieces; ++i) {
    const double a = startAngle + i * step;
    const double b = a + step;
    const CGPoint first{std::cos(a), std::sin(a)};
    const CGPoint last{std::cos(b), std::sin(b)};
    path.curveTo(place.apply({first.x - control * first.y, first.y + control * first.x}),
                 place.apply({last.x + control * last.y, last.y - control * last.x}),
                 i + 1 == pieces ? to : place.apply(last));
  }
}

CGPoint Mirrored(CGPoint point, CGPoint center) {
  return {2.0 * center.x - point.x, 2.0 * center.y - point.y};
}

CGPoint Between(CGPoint from, CGPoint to, double part) {
  return {from.x + (to.x - from.x) * part, from.y + (to.y - from.y) * part};
}

/// Reads a path command by command.
class PathReader {
 public:
  explicit PathReader(std::string_view text) : scanner_(text) {}

  UIBezierPath read() {
    while (!scanner_.isAtEnd()) {
      const char command = scanner_.letter();
      constexpr std::string_view kCommands = "MLHVCSQAZ";
      if (command == '\0' || kCommands.find(Upper(command)) == std::string_view::npos) {
        Fail("the path knows M L H V C S Q A Z, not " +
             (command == '\0' ? Next(scanner_.rest()) : "\"" + std::string(1, command) + "\""));
      }
      if (path_.segments().empty() && Upper(command) != 'M') Fail("a path must begin with M");
      Run(command);
    }
    return std::move(path_);
  }

 private:
  void Run(char command) {
    isRelative_ = IsLower(command);
    if (Upper(command) == 'Z') {
      Step('Z');
      return;
    }
    // Numbers that go on after a command repeat it; after a move they are lines.
    char repeated = Upper(command);
    do {
      Step(repeated);
      if (repeated == 'M') repeated = 'L';
    } while (ComesNumber());
  }

  bool ComesNumber() {
    SvgScanner ahead = scanner_;
    return ahead.number().has_value();
  }

  void Step(char command) {
    // After a closed figure, another one begins where that one did.
    if (isClosed_ && command != 'M' && command != 'Z') path_.moveTo(current_);
    isClosed_ = command == 'Z';
    std::optional<CGPoint> control;
    switch (command) {
      case 'M':
        current_ = start_ = Point();
        path_.moveTo(current_);
        break;
      case 'L':
        Line(Point());
        break;
      case 'H':
        Line({Coordinate(current_.x), current_.y});
        break;
      case 'V':
        Line({current_.x, Coordinate(current_.y)});
        break;
      case 'C':
      case 'S': {
        // A smooth curve leaves as the curve before it arrived.
        const CGPoint first = command == 'C' ? Point()
                              : lastControl_ ? Mirrored(*lastControl_, current_)
                                             : current_;
        control = Point();
        const CGPoint end = Point();
        path_.curveTo(first, *control, end);
        current_ = end;
        break;
      }
      case 'Q': {
        const CGPoint middle = Point();
        const CGPoint end = Point();
        path_.curveTo(Between(current_, middle, 2.0 / 3.0), Between(end, middle, 2.0 / 3.0), end);
        current_ = end;
        break;
      }
      case 'A':
        Arc();
        break;
      default:
        path_.close();
        current_ = start_;
    }
    lastControl_ = control;
  }

  void Line(CGPoint to) {
    path_.lineTo(to);
    current_ = to;
  }

  void Arc() {
    const double rx = scanner_.neededNumber();
    const double ry = scanner_.neededNumber();
    const double rotation = scanner_.neededNumber();
    const bool isLarge = scanner_.neededFlag();
    const bool isSweeping = scanner_.neededFlag();
    const CGPoint end = Point();
    AddArc(path_, current_, rx, ry, rotation, isLarge, isSweeping, end);
    current_ = end;
  }

  double Coordinate(double current) {
    const double value = scanner_.neededNumber() + (isRelative_ ? current : 0.0);
    if (std::fabs(value) > kLargest) Fail("the path leaves every picture");
    return value;
  }

  CGPoint Point() {
    const double x = Coordinate(current_.x);
    return {x, Coordinate(current_.y)};
  }

  SvgScanner scanner_;
  UIBezierPath path_;
  CGPoint current_;
  /// Of the figure.
  CGPoint start_;
  /// The second control point, when a cubic curve came before.
  std::optional<CGPoint> lastControl_;
  bool isRelative_ = false;
  bool isClosed_ = false;
};

CGAffineTransform Single(const std::string& name, const std::vector<double>& v) {
  const auto needs = [&](std::initializer_list<std::size_t> counts, const char* what) {
    if (std::find(counts.begin(), counts.end(), v.size()) == counts.end()) {
      Fail(name + "() needs " + what + " numbers");
    }
  };
  if (name == "matrix") {
    needs({6}, "six");
    return {v[0], v[1], v[2], v[3], v[4], v[5]};
  }
  if (name == "translate") {
    needs({1, 2}, "one or two");
    return CGAffineTransform::translation(v[0], v.size() > 1 ? v[1] : 0.0);
  }
  if (name == "scale") {
    needs({1, 2}, "one or two");
    return CGAffineTransform::scale(v[0], v.size() > 1 ? v[1] : v[0]);
  }
  if (name == "rotate") {
    needs({1, 3}, "one or three");
    const CGAffineTransform turn = CGAffineTransform::rotation(v[0] * kPi / 180.0);
    if (v.size() == 1) return turn;
    return CGAffineTransform::translation(-v[1], -v[2])
        .then(turn)
        .then(CGAffineTransform::translation(v[1], v[2]));
  }
  Fail("a transform is matrix(), translate(), rotate() or scale(), not \"" + name + "\"");
}

}  // namespace

UIBezierPath svgPath(std::string_view text) { return PathReader(text).read(); }

CGAffineTransform svgTransform(std::string_view text) {
  SvgScanner scanner(text);
  CGAffineTransform transform;
  while (!scanner.isAtEnd()) {
    std::string name;
    while (const char c = scanner.letter()) name += c;
    if (!scanner.skip('(')) Fail("a transform needs \"(\" where " + Next(scanner.rest()) + " is");
    std::vector<double> values;
    while (const auto value = scanner.number()) values.push_back(*value);
    if (!scanner.skip(')')) Fail("a transform needs \")\" where " + Next(scanner.rest()) + " is");
    transform = Single(name, values).then(transform);
    scanner.skip(',');
  }
  return transform;
}

}  // namespace lumenquest::adapters
