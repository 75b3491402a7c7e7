// SPDX-License-Identifier: Apache-2.0
#include "store/Changes.h"

#include "store/Schema.h"

#include <nlohmann/json.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace orvane::sandbox {

namespace {

constexpr const char* triggerPrefix = "keep_";

struct Columns {
  std::vector<std::string> all;
  std::vector<std::string> key;
};

Columns columnsOf(DatabaseConnection& database, const std::string& table) {
  Columns columns;
  Rows rows = database.query("SELECT name, pk FROM pragma_table_info(?) ORDER BY cid", table);
  while (rows.next()) {
    columns.all.emplace_back(rows.text(0));
    if (rows.integer(1) > 0) columns.key.emplace_back(rows.text(0));
  }
  return columns;
}

bool isSecret(const std::string& column) { return column == "code" || column == "push_token"; }

/// The columns as arguments of an SQL function: `prefix` stands before each.
std::string keyOf(const Columns& columns, const std::string& prefix) {
  std::string list;
  for (const std::string& name : columns.key) {
    list.append(list.empty() ? "" : ", ").append(prefix).append(name);
  }
  return "json_array(" + list + ")";
}

/// Two secrets look alike, so that only their coming and going shows.
std::string rowOf(const Columns& columns, const std::string& prefix) {
  std::string list;
  for (const std::string& name : columns.all) {
    const std::string column = prefix + name;
    list.append(list.empty() ? "'" : ", '").append(name).append("', ");
    list.append(isSecret(name) ? "CASE WHEN " + column + " IS NOT NULL THEN '<hidden>' END"
                               : column);
  }
  return "json_object(" + list + ")";
}

void watch(DatabaseConnection& database, const std::string& table) {
  const Columns columns = columnsOf(database, table);
  const auto keep = [&](const char* which, bool hasRow) {
    const std::string prefix = std::string{which} + ".";
    const std::string key = keyOf(columns, prefix);
    // Not "OR IGNORE": the clause of the statement that fires a trigger would take its place.
    return "INSERT INTO laid_rows SELECT '" + table + "', " + key + ", " +
           (hasRow ? rowOf(columns, prefix) : "NULL") +
           " WHERE NOT EXISTS (SELECT 1 FROM laid_rows WHERE table_name = '" + table +
           "' AND key = " + key + ");";
  };
  const auto trigger = [&](const std::string& event, const std::string& steps) {
    database.executeScript(("CREATE TRIGGER " + (triggerPrefix + table) + "_" + event + " AFTER " +
                            event + " ON " + table + " BEGIN " + steps + " END")
                               .c_str());
  };
  trigger("INSERT", keep("NEW", false));
  trigger("UPDATE", keep("OLD", true) + keep("NEW", false));
  trigger("DELETE", keep("OLD", true));
}

bool isWatched(const std::string& table) { return table != "laid" && table != "laid_rows"; }

/// The row as it is now; null where there is none.
nlohmann::json presentRow(DatabaseConnection& database, const std::string& table,
                          std::string_view key) {
  const Columns columns = columnsOf(database, table);
  std::string condition;
  for (std::size_t i = 0; i < columns.key.size(); ++i) {
    condition.append(i == 0 ? "" : " AND ").append(columns.key[i]);
    condition += " = json_extract(?1, '$[" + std::to_string(i) + "]')";
  }
  Rows row = database.query(
      "SELECT " + rowOf(columns, "") + " FROM " + table + " WHERE " + condition, key);
  return row.next() ? nlohmann::json::parse(row.text(0)) : nlohmann::json{};
}

}  // namespace

void watchChanges(DatabaseConnection& database) {
  for (const std::string& table : tableNames(database)) {
    if (isWatched(table)) watch(database, table);
  }
}

void forgetChanges(DatabaseConnection& database) {
  std::vector<std::string> names;
  {
    Rows rows = database.query("SELECT name FROM sqlite_schema WHERE type = 'trigger'");
    while (rows.next()) names.emplace_back(rows.text(0));
  }
  for (const std::string& name : names) {
    if (name.starts_with(triggerPrefix)) database.executeScript(("DROP TRIGGER " + name).c_str());
  }
}

nlohmann::json changesIn(DatabaseConnection& database, std::size_t most) {
  auto changes = nlohmann::json::array();
  bool more = false;
  Rows kept = database.query("SELECT table_name, key, row FROM laid_rows ORDER BY table_name, key");
  while (!more && kept.next()) {
    const std::string table{kept.text(0)};
    auto before = kept.isNull(2) ? nlohmann::json{} : nlohmann::json::parse(kept.text(2));
    auto after = presentRow(database, table, kept.text(1));
    if (before == after) continue;
    if (changes.size() == most) {
      more = true;
      continue;
    }
    const char* kind = before.is_null() ? "added" : after.is_null() ? "removed" : "changed";
    std::string key;
    for (const auto& part : nlohmann::json::parse(kept.text(1))) {
      key.append(key.empty() ? "" : " ");
      key += part.is_string() ? part.get<std::string>() : part.dump();
    }
    changes.push_back({{"table", table},
                       {"key", key},
                       {"kind", kind},
                       {"before", std::move(before)},
                       {"after", std::move(after)}});
  }
  return {{"changes", std::move(changes)}, {"more", more}};
}

}  // namespace orvane::sandbox
