// The words of an ISO program's contour blocks against head and style: compensation, offset, condition,
// taper. Knows one block at a time.
#include <algorithm>

#include "exchange/figureiso.h"
#include "host/platform/format.h"

namespace tarnex::truth {

namespace {

constexpr double kTableStep = 0.0006;  // mm; tables are printed to a thousandth, halves either way

std::string upper(std::string text) {
  for (char& c : text)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return text;
}

const std::string* find(const std::vector<std::pair<std::string, std::string>>& table,
                        const std::string& key) {
  const auto at = std::ranges::find_if(table, [&](const auto& entry) { return entry.first == key; });
  return at == table.end() ? nullptr : &at->second;
}

const char* codeOf(int compensation) {
  return compensation > 0 ? "G41" : compensation < 0 ? "G42" : "G40";
}

// A table's value in mm: with a point it stands in mm, without one in micrometres.
std::optional<double> tableValue(const std::string& text) {
  double v = 0;
  if (!parseNumber(text, v)) return std::nullopt;
  return text.find('.') == std::string::npos ? v / 1000 : v;
}

double wantedOffset(const IsoFigure& figure, int record) {
  const int side = figure.kind == IsoKind::kOuter ? -1 : 1;
  return figure.style.passes[static_cast<std::size_t>(record)].dValue1 - side * figure.style.dValueA;
}

struct WantedTaper {
  double angle = 0;    // degrees; 0 none
  int side = 0;        // of the direction word
  double printed = 0;  // where the angle has a sign
};

// The taper of a whole pass lies on the compensation's side where it is positive; that of a span left of a
// contour that runs counter-clockwise.
WantedTaper wantedTaper(const IsoWordsCheck& c) {
  const auto record = static_cast<std::size_t>(c.job.dialect.oneTaper ? 0 : c.piece.record);
  WantedTaper w;
  w.angle = c.figure.kind == IsoKind::kOuter ? c.figure.style.dValueC : c.figure.style.passOffset[record];
  if (c.bySpan) w.angle = c.figure.tapers[c.span];
  const int sign = w.angle > 0 ? 1 : -1;
  w.side = sign * c.dir * (c.bySpan ? c.figure.turn : c.figure.wire) * (c.figure.swapped ? -1 : 1);
  w.printed = c.job.dialect.taperSigned ? -c.dir * c.figure.turn * w.angle : std::abs(w.angle);
  return w;
}

}  // namespace

IsoTables::IsoTables(const IsoText& text, const IsoDialect& dialect, IsoFindings& findings) {
  for (const IsoDefinition& d : text.definitions) {
    const std::string key = upper(d.key);
    const auto number = [&](const std::string& word) { return key.substr(word.size()); };
    // A condition's number may have the same letter as an offset's; its value is no number.
    if (!dialect.offset.empty() && key.starts_with(dialect.offset) && tableValue(d.value)) {
      if (const std::string* had = find(offsets_, number(dialect.offset)); had && *had != d.value)
        findings.fault(IsoFault::kOffset, {0, d.line, {}},
                       formatted("%s is defined a second time, with %s in place of %s", d.key.c_str(),
                                 d.value.c_str(), had->c_str()));
      offsets_.emplace_back(number(dialect.offset), d.value);
    } else if (!dialect.condition.empty() && key.starts_with(dialect.condition)) {
      conditions_.emplace_back(number(dialect.condition), d.value);
    } else if (key.starts_with("C")) {
      conditions_.emplace_back(number("C"), d.value);
    }
  }
}

const std::string* IsoTables::offset(const std::string& number) const {
  return find(offsets_, upper(number));
}

bool IsoTables::hasCondition(const std::string& number) const {
  return find(conditions_, upper(number)) != nullptr;
}

void IsoWordsCheck::compensation(const IsoMove& m) const {
  const int due = figure.wire * dir * (figure.swapped ? -1 : 1);
  if (m.state->compensation == due) return;
  if (m.state->compensation == 0)
    job.findings.fault(
        IsoFault::kCompensation, at(m),
        formatted("%s cuts the contour without compensation; %s is due", piece.name.c_str(), codeOf(due)));
  else
    job.findings.fault(IsoFault::kCompensation, at(m),
                       formatted("%s runs with %s, so the wire lies in what stays; %s lies on the waste side",
                                 piece.name.c_str(), codeOf(m.state->compensation), codeOf(due)));
}

void IsoWordsCheck::offset(const IsoMove& m) const {
  if (!job.walk.saysOffset) return;  // told once for the program
  const auto& record = figure.style.passes[static_cast<std::size_t>(piece.record)];
  const double due = wantedOffset(figure, piece.record);
  const auto fault = [&](const std::string& what) {
    job.findings.fault(IsoFault::kOffset,
                       {figure.number, m.state->offset ? m.state->offsetLine : m.line, m.stroke.start},
                       piece.name + what);
  };
  const std::string word = job.dialect.offset;
  if (!m.state->offset) return fault(" runs before any offset has been said");
  const std::string said = word + *m.state->offset;
  if (!job.dialect.offsetByNumber) {
    const IsoNumber value = isoNumber(job.dialect, *m.state->offset);
    if (!value.ok || std::abs(value.mm - due) > job.dialect.unit + 1e-9)
      fault(formatted(" runs with the offset %s; its style has %.4f mm", said.c_str(), due));
    return;
  }
  if (const std::string* text = job.tables.offset(*m.state->offset)) {
    const auto value = tableValue(*text);
    if (!value || std::abs(*value - due) > kTableStep)
      fault(formatted(" runs with the offset %s, which the head defines as %s; its style has %.4f mm",
                      said.c_str(), text->c_str(), due));
  } else if (job.dialect.headTable) {
    fault(formatted(" runs with the offset %s, which the head doesn't define", said.c_str()));
  } else if (upper(*m.state->offset) != upper(record.sCode)) {
    fault(
        formatted(" runs with the offset %s; its style has %s", said.c_str(), (word + record.sCode).c_str()));
  }
}

void IsoWordsCheck::condition(const IsoMove& m) const {
  if (!job.walk.saysCondition) return;
  const auto& record = figure.style.passes[static_cast<std::size_t>(piece.record)];
  const auto fault = [&](const std::string& what) {
    job.findings.fault(IsoFault::kCondition,
                       {figure.number, m.state->condition ? m.state->conditionLine : m.line, m.stroke.start},
                       piece.name + what);
  };
  const std::string word = job.dialect.condition;
  if (!m.state->condition) return fault(" runs before any condition has been said");
  const std::string said = word + *m.state->condition;
  if (upper(*m.state->condition) != upper(record.sSub1))
    fault(formatted(" runs with the condition %s; its style has %s", said.c_str(),
                    (word + record.sSub1).c_str()));
  else if (job.tables.hasConditions() && !job.tables.hasCondition(*m.state->condition))
    fault(formatted(" runs with the condition %s, which the head doesn't define", said.c_str()));
}

void IsoWordsCheck::taper(const IsoMove& m) const {
  const auto record = static_cast<std::size_t>(job.dialect.oneTaper ? 0 : piece.record);
  if (bySpan && (figure.style.dValueC != 0 || figure.style.passOffset[record] != 0))
    return;  // told as a note
  const WantedTaper due = wantedTaper(*this);
  const IsoTaperNow& now = m.state->taper;
  const auto fault = [&](const std::string& what) {
    job.findings.fault(IsoFault::kTaper, at(m), piece.name + what);
  };
  if ((due.angle != 0) != now.on) {
    if (now.on) return fault(" runs with a taper where there is none");
    return fault(formatted(" runs without its taper of %.4f degrees", due.angle));
  }
  if (!now.on) return;
  if (now.angle && std::abs(*now.angle - due.printed) > job.dialect.angleUnit)
    fault(formatted(" runs with a taper of %.4f degrees; %.4f are due", *now.angle, due.printed));
  else if (!job.dialect.taperSigned && now.side != due.side)
    fault(formatted(
        " leans to the %s with its taper of %.4f degrees; in this direction it is to lean to the %s",
        now.side > 0 ? "left" : "right", due.angle, due.side > 0 ? "left" : "right"));
}

}  // namespace tarnex::truth
