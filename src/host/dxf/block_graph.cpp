// Which block references would never end: found before the blocks are read, from names alone.
// Knows BLOCK and INSERT tags; no geometry.
#include <algorithm>
#include <unordered_map>

#include "host/dxf/reader.h"

namespace tarnex {
namespace {

struct Node {
  std::string name;
  std::vector<std::pair<std::size_t, double>> inner;  // block and number of copies
  double own = 0, expanded = 0;                       // entities
  int height = 0, state = 0;                          // 0 new, 1 on the way, 2 done
  std::size_t next = 0;                               // inner reference to look at
};

class Graph {
 public:
  std::size_t node(std::string_view name) {
    const auto [it, added] = byName_.emplace(capitals(name), nodes_.size());
    if (added) nodes_.push_back({it->first, {}, 0, 0, 0, 0, 0});
    return it->second;
  }
  std::vector<Node>& nodes() { return nodes_; }

  // Depth first without recursion; refuses references to what is on the way, too high or too large.
  std::set<std::pair<std::string, std::string>> refused() {
    std::set<std::pair<std::string, std::string>> out;
    for (std::size_t start = 0; start < nodes_.size(); ++start) {
      if (nodes_[start].state) continue;
      std::vector<std::size_t> way{start};
      nodes_[start].state = 1;
      while (!way.empty()) {
        Node& n = nodes_[way.back()];
        if (n.next == n.inner.size()) {
          n.state = 2;
          n.expanded += n.own;
          way.pop_back();
          continue;
        }
        const auto [inner, copies] = n.inner[n.next];
        Node& m = nodes_[inner];
        if (m.state == 0) {
          m.state = 1;
          way.push_back(inner);
          continue;
        }
        ++n.next;
        if (m.state == 1 || m.height >= kDeepestNesting || n.expanded + m.expanded * copies > kMostExpanded) {
          out.emplace(n.name, m.name);
          continue;
        }
        n.height = std::max(n.height, m.height + 1);
        n.expanded += m.expanded * copies;
      }
    }
    return out;
  }

 private:
  std::vector<Node> nodes_;
  std::unordered_map<std::string, std::size_t> byName_;
};

}  // namespace

std::set<std::pair<std::string, std::string>> endlessReferences(TagReader tags) {
  Graph graph;
  bool inBlock = false, inInsert = false, waiting = false;  // waiting for the block's or the reference's name
  std::size_t block = 0, inner = kNowhere;
  double columns = 1, rows = 1;
  const auto insertEnds = [&] {
    if (inBlock && inInsert && inner != kNowhere)
      graph.nodes()[block].inner.emplace_back(inner, columns * rows);
    inInsert = false;
    inner = kNowhere;
    columns = rows = 1;
  };
  for (;;) {
    if (!tags.next()) {
      if (tags.damaged() && tags.resynchronise()) continue;
      break;
    }
    const int code = tags.code();
    if (code == 0) {
      insertEnds();
      const std::string_view type = tags.word();
      if (type == "ENDSEC" || type == "SECTION" || type == "EOF") break;
      waiting = type == "BLOCK" || type == "INSERT";
      inInsert = type == "INSERT";
      if (type == "BLOCK" || type == "ENDBLK")
        inBlock = false;
      else if (inBlock)
        graph.nodes()[block].own += 1;
    } else if (code == 2 && waiting) {
      waiting = false;
      const std::size_t named = graph.node(tags.word());
      if (inInsert) {
        inner = named;
      } else {
        block = named;
        inBlock = true;
      }
    } else if (inInsert && code == 70) {
      columns = static_cast<double>(std::clamp(tags.integer(1), 1LL, kMostCopies));
    } else if (inInsert && code == 71) {
      rows = static_cast<double>(std::clamp(tags.integer(1), 1LL, kMostCopies));
    }
  }
  insertEnds();
  return graph.refused();
}

}  // namespace tarnex
