// As much of JSON Schema as docs/scene.schema.json uses: what is wrong with a value, empty = nothing. A keyword that is
// not known here fails, so that no rule of the schema goes unread.
#pragma once

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <string>

namespace zrtest {

class JsonSchema {
  public:
    using Json = nlohmann::json;
    explicit JsonSchema(Json schema) : root_(std::move(schema)) {}
    std::string problemOf(const Json& value) const { return check(root_, value, "$"); }

  private:
    static bool HasType(const Json& value, const std::string& type) {
        if (type == "object") return value.is_object();
        if (type == "array") return value.is_array();
        if (type == "string") return value.is_string();
        if (type == "boolean") return value.is_boolean();
        if (type == "number") return value.is_number();
        if (type == "integer") return value.is_number() && value.get<double>() == std::floor(value.get<double>());
        return false;
    }

    std::string check(const Json& schema, const Json& value, const std::string& path) const {
        for (const auto& [key, rule] : schema.items()) {
            std::string problem = checkRule(schema, key, rule, value, path);
            if (!problem.empty()) return problem;
        }
        return "";
    }

    std::string checkRule(const Json& schema, const std::string& key, const Json& rule, const Json& value,
                          const std::string& path) const {
        const std::string wrong = path + " breaks " + key;
        if (key == "$ref") {
            return check(root_.at(Json::json_pointer(rule.get<std::string>().substr(1))), value, path);
        }
        if (key == "type") return HasType(value, rule) ? "" : wrong;
        if (key == "enum") return std::find(rule.begin(), rule.end(), value) != rule.end() ? "" : wrong;
        if (key == "minimum") return !value.is_number() || value >= rule ? "" : wrong;
        if (key == "maximum") return !value.is_number() || value <= rule ? "" : wrong;
        if (key == "minItems") return !value.is_array() || value.size() >= rule ? "" : wrong;
        if (key == "maxItems") return !value.is_array() || value.size() <= rule ? "" : wrong;
        if (key == "minProperties") return !value.is_object() || value.size() >= rule ? "" : wrong;
        if (key == "maxProperties") return !value.is_object() || value.size() <= rule ? "" : wrong;
        if (key == "anyOf") {
            for (const Json& choice : rule)
                if (check(choice, value, path).empty()) return "";
            return wrong;
        }
        if (key == "required") {
            for (const Json& name : rule)
                if (value.is_object() && !value.contains(name.get<std::string>())) return wrong + " " + name.dump();
            return "";
        }
        if (key == "prefixItems" || key == "items") {
            for (size_t i = 0; value.is_array() && i < value.size(); ++i) {
                if (key == "prefixItems" && i >= rule.size()) break;
                std::string problem =
                    check(key == "items" ? rule : rule[i], value[i], path + "[" + std::to_string(i) + "]");
                if (!problem.empty()) return problem;
            }
            return "";
        }
        if (key == "properties" || key == "additionalProperties") {
            if (!value.is_object()) return "";
            for (const auto& [name, item] : value.items()) {
                bool listed = schema.contains("properties") && schema["properties"].contains(name);
                if ((key == "properties") != listed) continue;
                if (key == "additionalProperties" && rule.is_boolean()) return wrong + ": " + name;
                std::string problem = check(listed ? rule[name] : rule, item, path + "." + name);
                if (!problem.empty()) return problem;
            }
            return "";
        }
        for (const char* note : {"$schema", "$defs", "title", "description", "default"})
            if (key == note) return "";
        return "the schema has an unknown keyword " + key;
    }

    Json root_;
};

}  // namespace zrtest
