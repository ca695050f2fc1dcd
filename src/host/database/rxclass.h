// Run-time classes: a name, a parent, and how to make an empty object.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarnex {

class AcDbObject;

struct AcRxClass {
  std::string name;
  const AcRxClass* parent = nullptr;
  std::string dxfName;  // entity type in a drawing file
  std::string appName;  // application that registered it; empty for the host's own
  int dwgVersion = 0, maintenanceVersion = 0, proxyFlags = 0;
  std::unique_ptr<AcDbObject> (*create)() = nullptr;  // null for abstract classes
  [[nodiscard]] bool isDerivedFrom(const AcRxClass& other) const {
    for (const AcRxClass* c = this; c; c = c->parent)
      if (c == &other) return true;
    return false;
  }
};

// A class of the host itself. Abstract ones have no `create`.
[[nodiscard]] AcRxClass hostClass(std::string name, const AcRxClass* parent, std::string dxfName = {},
                                  std::unique_ptr<AcDbObject> (*create)() = nullptr);

// The classes that applications have added to the host's own. Entries are descriptors that outlive the
// dictionary's use of them (constants of the module that registers them).
class AcRxClassDictionary {
 public:
  // False when another class of that name is there ("Class mismatch" is the caller's to tell).
  [[nodiscard]] bool add(const AcRxClass& c);
  void remove(const AcRxClass& c);
  [[nodiscard]] const AcRxClass* at(std::string_view name) const;         // by class name
  [[nodiscard]] const AcRxClass* atDxfName(std::string_view name) const;  // by DXF name, case as given

 private:
  std::vector<const AcRxClass*> classes_;
};

}  // namespace tarnex
