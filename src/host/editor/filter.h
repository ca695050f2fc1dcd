// Selection filters: chains of conditions on type, layer, colour and more, with and, or, not.
// Knows no prompt.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "host/database/database.h"

namespace tarnex {

// `,` parts alternatives, `*` stands for any text, `?` for one letter (a byte), a backquote takes the next as
// it stands; ignoring case (ASCII).
[[nodiscard]] bool matchesWildcard(std::string_view text, std::string_view pattern);

// A filter made ready for many entities. Conditions: 0 the type word, 2 the block's name, 5 the handle, 6 the
// line type, 8 the layer, 60 invisible, 62 the entity's own colour (256 by layer, 0 by block), 67 always 0,
// -3 an application with extended data. -4 opens and closes groups: <and and>, <or or>, <not not>, <xor xor>.
// Items side by side are all required. A condition that isn't known holds for nothing.
class SelectionFilter {
 public:
  SelectionFilter(const AcDbDatabase& drawing, const ResBufChain& chain);
  ~SelectionFilter();
  [[nodiscard]] bool accepts(const AcDbEntity& entity);
  [[nodiscard]] bool wellFormed() const {
    return wellFormed_;
  }  // groups opened and closed in pairs; else none fits

 private:
  struct Node;
  bool holds(Node& node, const AcDbEntity& entity);
  bool holdsItem(Node& node, const AcDbEntity& entity);
  std::unique_ptr<Node> parse(const ResBufChain& chain, std::size_t& at, std::string_view group);
  const AcDbDatabase& drawing_;
  std::unique_ptr<Node> root_;
  bool wellFormed_ = true;
};

}  // namespace tarnex
