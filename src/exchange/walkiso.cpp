// Blocks as a control runs them: modal codes, places, arcs, corners with a radius, spans told ahead.
// Knows one program.
#include "exchange/walkiso.h"

#include <utility>

#include "host/platform/format.h"

namespace tarnex::truth {

namespace {

constexpr double kHalfTurn = 3.141592653589793;
constexpr double kNoMove = 1e-9;      // mm
constexpr double kAlmostBack = 1e-3;  // rad; a corner that turns back so sharply has no rounding

enum class Code { kRapid, kLine, kClockwise, kCounterClockwise };

// What of one block concerns its motion.
struct Motion {
  bool startPlace = false;  // G92
  std::optional<double> x, y, i, j;
  std::optional<double> cornerRadius;
  bool any() const { return x || y || i || j; }
};

class Walker {
 public:
  Walker(const IsoText& text, const IsoDialect& dialect, const IsoWalkFrom& from)
      : text_(text),
        dialect_(dialect),
        from_(from),
        thread_(isoKey(from.thread)),
        cut_(isoKey(from.cut)),
        here_(from.from),
        absolute_(dialect.absolute) {}

  IsoWalk walk() {
    for (const Turn& turn : dialect_.spanAhead ? orderOfRunning() : plainOrder())
      run(text_.blocks[turn.block], turn.part);
    roundCorners();
    return std::move(out_);
  }

 private:
  // ---- order
  enum class Part { kAll, kWords, kMotion };
  struct Turn {
    std::size_t block = 0;
    Part part = Part::kAll;
  };
  std::vector<Turn> plainOrder() const {
    std::vector<Turn> order(text_.blocks.size());
    for (std::size_t b = 0; b < order.size(); ++b) order[b].block = b;
    return order;
  }

  static bool has(const IsoBlock& block, std::string_view word) {
    return std::ranges::any_of(block.words, [&](const IsoWord& w) { return w.key == word; });
  }
  bool moves(const IsoBlock& block) const {
    return std::ranges::any_of(block.words,
                               [](const IsoWord& w) { return w.letters == "X" || w.letters == "Y"; }) &&
           !has(block, "G92");
  }
  bool endsPass(const IsoBlock& block) const {
    return has(block, "G40") || has(block, cut_) || has(block, "G0");
  }

  // A block that is told ahead runs in front of the next one that is marked, else behind the move that
  // follows it. Its other words hold where it stands.
  std::vector<Turn> orderOfRunning() const {
    std::vector<Turn> order;
    std::optional<std::size_t> held;
    std::size_t due = 0;
    bool insidePass = false;
    for (std::size_t b = 0; b < text_.blocks.size(); ++b) {
      const IsoBlock& block = text_.blocks[b];
      if (held && due == b) order.push_back({*std::exchange(held, std::nullopt), Part::kMotion});
      if (endsPass(block)) insidePass = false;
      if (!insidePass && moves(block) && has(block, "G44")) {
        insidePass = true;
        if (const auto place = placeOf(b)) {
          held = b;
          due = *place;
          order.push_back({b, Part::kWords});
          continue;
        }
      }
      order.push_back({b, Part::kAll});
    }
    if (held) order.push_back({*held, Part::kMotion});
    return order;
  }
  // In front of which block the one told ahead runs.
  std::optional<std::size_t> placeOf(std::size_t b) const {
    std::optional<std::size_t> behindNext, behindLast;
    for (std::size_t k = b + 1; k < text_.blocks.size(); ++k) {
      const IsoBlock& block = text_.blocks[k];
      if (behindNext && endsPass(block)) return behindNext;
      if (!moves(block)) continue;
      if (has(block, "G44")) return behindLast.value_or(k);
      behindLast = k + 1;
      if (!behindNext) behindNext = behindLast;
    }
    return behindNext;
  }

  // ---- words
  void complain(const IsoBlock& block, std::string text) {
    out_.complaints.push_back({block.line, false, std::move(text)});
  }

  static bool matches(const std::vector<IsoWord>& words, std::size_t at, const std::vector<IsoWord>& wanted) {
    if (wanted.empty() || at + wanted.size() > words.size()) return false;
    for (std::size_t k = 0; k < wanted.size(); ++k)
      if (words[at + k].key != wanted[k].key) return false;
    return true;
  }

  void event(IsoEvent::Kind kind, const IsoBlock& block) {
    out_.events.push_back({kind, block.line, out_.moves.size(), state_.compensation});
  }

  void wireWords(const IsoBlock& block, const IsoWord& w) {
    if (w.key == thread_) {
      event(IsoEvent::Kind::kThread, block);
      state_.threaded = out_.threads = true;
    } else if (w.key == cut_) {
      event(IsoEvent::Kind::kCut, block);
      state_.threaded = false;
      out_.cuts = true;
    }
  }

  void motionCode(const IsoBlock& block, std::size_t k) {
    const IsoWord& w = block.words[k];
    constexpr std::pair<const char*, Code> kCodes[] = {
        {"G0", Code::kRapid}, {"G1", Code::kLine}, {"G2", Code::kClockwise}, {"G3", Code::kCounterClockwise}};
    if (matches(block.words, k, dialect_.rapid)) {
      code_ = Code::kRapid;
      coded_ = true;
    }
    for (const auto& [text, code] : kCodes)
      if (w.key == text) {
        code_ = code;
        coded_ = true;
      }
  }

  void settingCode(const IsoBlock& block, const IsoWord& w) {
    if (w.key == "G40") {
      if (state_.compensation != 0) event(IsoEvent::Kind::kCompensationOff, block);
      state_.compensation = 0;
    }
    if (w.key == "G41") state_.compensation = 1;
    if (w.key == "G42") state_.compensation = -1;
    if (w.key == "G90") absolute_ = true;
    if (w.key == "G91") absolute_ = false;
  }

  void taperWords(const std::vector<IsoWord>& words, std::size_t k) {
    IsoTaperNow& t = state_.taper;
    if (matches(words, k, dialect_.taperCancel)) t = {};
    for (const int side : {1, -1})
      if (matches(words, k, side > 0 ? dialect_.taperLeft : dialect_.taperRight)) {
        t.on = out_.saysTaper = true;
        t.side = side;
      }
    if (dialect_.spanAhead && (words[k].key == "P11" || words[k].key == "P1")) {
      t.on = words[k].key == "P11";
      out_.saysTaper = true;
      t.angle.reset();
    }
    double angle = 0;
    if (!dialect_.angle.empty() && words[k].letters == dialect_.angle &&
        parseNumber(words[k].number, angle)) {
      t.on = out_.saysTaper = true;
      t.angle = angle;
    }
  }

  void numberWord(const IsoBlock& block, const IsoWord& w, Motion& m) {
    const bool place = w.letters == "X" || w.letters == "Y" || w.letters == "I" || w.letters == "J";
    if (w.letters == "R" && !w.number.empty()) {
      if (const IsoNumber n = isoNumber(dialect_, w.number); n.ok) m.cornerRadius = n.mm;
      return;
    }
    if (!place) return;
    const IsoNumber n = isoNumber(dialect_, w.number);
    if (!n.ok)
      complain(block,
               formatted("%s%s isn't a number as this post has them", w.letters.c_str(), w.number.c_str()));
    (w.letters == "X" ? m.x : w.letters == "Y" ? m.y : w.letters == "I" ? m.i : m.j) = n.mm;
  }

  void settingWords(const IsoBlock& block, const IsoWord& w) {
    if (!dialect_.offset.empty() && w.letters == dialect_.offset && !w.number.empty()) {
      state_.offset = w.number;
      state_.offsetLine = block.line;
      out_.saysOffset = true;
    }
    if (!dialect_.condition.empty() && w.letters == dialect_.condition && !w.number.empty()) {
      state_.condition = w.number;
      state_.conditionLine = block.line;
      out_.saysCondition = true;
    }
  }

  void run(const IsoBlock& block, Part part) {
    coded_ = false;
    Motion m;
    for (std::size_t k = 0; k < block.words.size(); ++k) {
      const IsoWord& w = block.words[k];
      if (part != Part::kWords) {
        motionCode(block, k);
        numberWord(block, w, m);
        m.startPlace |= w.key == "G92";
      }
      if (part == Part::kMotion) continue;
      settingCode(block, w);
      wireWords(block, w);
      taperWords(block.words, k);
      settingWords(block, w);
    }
    if (m.any()) move(block, m);
  }

  // ---- places
  void move(const IsoBlock& block, const Motion& m) {
    // The first place of a program says where the wire stands, whatever stands around it.
    if (m.startPlace || (!coded_ && out_.moves.empty() && !begun_)) {
      begun_ = true;
      here_ = {m.x.value_or(0) + from_.origin.x, m.y.value_or(0) + from_.origin.y};
      if (out_.moves.empty()) out_.start = here_;
      return;
    }
    begun_ = true;
    AcGePoint2d to = here_;
    if (absolute_) {
      if (m.x) to.x = *m.x + from_.origin.x;
      if (m.y) to.y = *m.y + from_.origin.y;
    } else {
      to.x += m.x.value_or(0);
      to.y += m.y.value_or(0);
    }
    IsoMove out;
    out.line = block.line;
    out.rapid = code_ == Code::kRapid;
    out.stroke = lineStroke(here_, to);
    if (!shared_ || *shared_ != state_) shared_ = std::make_shared<const IsoState>(state_);
    out.state = shared_;
    if (code_ == Code::kClockwise || code_ == Code::kCounterClockwise) {
      arc(m, out, to);
    } else if (m.i || m.j) {
      complain(block, "a centre stands in a block that is no arc");
    }
    const double radius = m.cornerRadius.value_or(0);
    if (lengthOf(out.stroke) > kNoMove) {
      if (radius > 0) corners_.emplace_back(out_.moves.size(), radius);
      out_.moves.push_back(std::move(out));
    }
    here_ = to;
  }

  void arc(const Motion& m, IsoMove& out, AcGePoint2d to) {
    if (m.i) centre_.x = *m.i;
    if (m.j) centre_.y = *m.j;
    // Without modal output a word that isn't there is 0.
    if (!dialect_.modal) centre_ = {m.i.value_or(0), m.j.value_or(0)};
    const AcGePoint2d centre = dialect_.absoluteCentre
                                   ? AcGePoint2d{centre_.x + from_.origin.x, centre_.y + from_.origin.y}
                                   : AcGePoint2d{here_.x + centre_.x, here_.y + centre_.y};
    const double r0 = dist(centre, here_), r1 = dist(centre, to), apart = std::abs(r0 - r1);
    if (apart > out_.worstRadius) {
      out_.worstRadius = apart;
      out_.worstRadiusLine = out.line;
    }
    // An incremental program's place has the roundings of all blocks in it, an absolute centre hasn't.
    const double drift = !absolute_ && dialect_.absoluteCentre ? 0.1 : 0;
    if (apart > radiusRounding(dialect_.unit) + drift || !(r0 > 0)) {
      out.fault = formatted(
          "the arc's ends (%.4f, %.4f) and (%.4f, %.4f) have radii of %.4f and %.4f mm about its centre "
          "(%.4f, %.4f); rounding explains %.4f mm",
          here_.x, here_.y, to.x, to.y, r0, r1, centre.x, centre.y, radiusRounding(dialect_.unit));
      return;
    }
    const bool ccw = code_ == Code::kCounterClockwise;
    const Vec a = here_ - centre, b = to - centre;
    double sweep = std::atan2(cross(a, b), dot(a, b));
    if (dist(here_, to) <= kNoMove) sweep = 0;
    if (ccw && sweep <= 0) sweep += 2 * kHalfTurn;
    if (!ccw && sweep >= 0) sweep -= 2 * kHalfTurn;
    out.stroke = arcStroke(centre, here_, sweep);
    out.stroke.end = to;
  }

  // A line that ends in a corner with a radius: the control rounds the corner between it and the next line.
  void roundCorners() {
    std::vector<IsoMove> rounded;
    std::vector<std::size_t> now;  // where each move has gone to
    std::size_t next = 0;
    for (std::size_t k = 0; k < out_.moves.size(); ++k) {
      now.push_back(rounded.size());
      const bool corner = next < corners_.size() && corners_[next].first == k;
      if (corner && k + 1 < out_.moves.size())
        roundOne(k, corners_[next].second, rounded);
      else
        rounded.push_back(out_.moves[k]);
      if (corner) ++next;
    }
    now.push_back(rounded.size());
    for (IsoEvent& e : out_.events) e.before = now[e.before];
    out_.moves = std::move(rounded);
  }
  void roundOne(std::size_t k, double radius, std::vector<IsoMove>& to) {
    IsoMove in = out_.moves[k];
    IsoMove& behind = out_.moves[k + 1];
    const Vec u = heading(in.stroke, 1), v = heading(behind.stroke, 0);
    const double turn = std::atan2(cross(u, v), dot(u, v));
    const double cut = radius * std::tan(std::abs(turn) / 2);
    if (in.stroke.arc || behind.stroke.arc || std::abs(turn) > kHalfTurn - kAlmostBack ||
        cut > std::min(lengthOf(in.stroke), lengthOf(behind.stroke))) {
      to.push_back(in);
      return;
    }
    const double slack = 2 * dialect_.unit * (1 + std::tan(std::abs(turn) / 2));
    const AcGePoint2d corner = in.stroke.end, first = corner - u * cut, last = corner + v * cut;
    const double left = turn > 0 ? 1 : -1;
    IsoMove arc = in;
    arc.corner = true;
    in.stroke = lineStroke(in.stroke.start, first);
    arc.stroke = arcStroke(first + Vec{-u.y, u.x} * (left * radius), first, turn);
    arc.stroke.end = last;
    behind.stroke = lineStroke(last, behind.stroke.end);
    in.slack = arc.slack = slack;
    behind.slack = std::max(behind.slack, slack);
    to.push_back(in);
    to.push_back(arc);
  }

  const IsoText& text_;
  const IsoDialect& dialect_;
  const IsoWalkFrom& from_;
  const std::string thread_, cut_;
  IsoWalk out_;
  AcGePoint2d here_, centre_;
  bool absolute_ = true, coded_ = false, begun_ = false;
  Code code_ = Code::kRapid;
  IsoState state_;
  std::shared_ptr<const IsoState> shared_;
  std::vector<std::pair<std::size_t, double>> corners_;
};

}  // namespace

IsoWalk walkIso(const IsoText& text, const IsoDialect& dialect, const IsoWalkFrom& from) {
  return Walker(text, dialect, from).walk();
}

}  // namespace tarnex::truth
