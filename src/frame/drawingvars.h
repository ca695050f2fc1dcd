// Small named values inside the drawing, so that it reopens with the machine and options it was last worked
// with. Knows dictionaries and xrecords; which keys there are, their users know.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/database/database.h"

namespace tarnex {

// One value per key in the dictionary `MY_INFO_DICT` of the drawing. Keys are case-blind (kept in upper
// case). Reading a key that isn't there, or that holds another kind, gives nothing. An integer survives as 16
// bits.
class DrawingVars {
 public:
  explicit DrawingVars(AcDbDatabase& drawing) : drawing_(drawing) {}

  // True when the key existed before.
  bool setInt(std::string_view key, int value);
  bool setDouble(std::string_view key, double value);
  bool setString(std::string_view key, std::string_view text);
  bool setPoint(std::string_view key, const AcGePoint3d& p);
  [[nodiscard]] std::optional<int> getInt(std::string_view key) const;
  [[nodiscard]] std::optional<double> getDouble(std::string_view key) const;
  [[nodiscard]] std::optional<std::string> getString(std::string_view key) const;
  [[nodiscard]] std::optional<AcGePoint3d> getPoint(std::string_view key) const;
  [[nodiscard]] bool exists(std::string_view key) const;
  void remove(std::string_view key);
  // One text per entry, as the command `USERVAR` prints it.
  [[nodiscard]] std::vector<std::string> listAll() const;

 private:
  bool write(std::string_view key, ResBuf item);
  [[nodiscard]] std::optional<ResBuf> read(std::string_view key) const;
  [[nodiscard]] AcDbObjectId dictionary() const;
  AcDbDatabase& drawing_;
};

}  // namespace tarnex
