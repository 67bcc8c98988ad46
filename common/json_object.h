// SPDX-License-Identifier: Apache-2.0
//
// RAII wrappers for cJSON: trees, printed strings, and objects under construction.

#ifndef COMMON_JSON_OBJECT_H
#define COMMON_JSON_OBJECT_H

#include <memory>
#include <string>
#include <utility>

#include "cJSON.h"

namespace OHOS::DistributedHardware::OstraAdapter {

struct DeleteJsonTree {
    void operator()(cJSON *tree) const
    {
        cJSON_Delete(tree);
    }
};
using JsonTree = std::unique_ptr<cJSON, DeleteJsonTree>;

struct FreeJsonString {
    void operator()(char *string) const
    {
        cJSON_free(string);
    }
};
using JsonString = std::unique_ptr<char, FreeJsonString>;

// A JSON object under construction. It references keys and strings instead of copying them, which halves the
// allocations of a document: they must outlive the object. If an allocation fails, the object becomes null, and adding
// to a null object does nothing, so callers check once, at the end.
class JsonObject {
public:
    JsonObject() : tree_(cJSON_CreateObject())
    {
    }

    bool IsNull() const
    {
        return tree_ == nullptr;
    }

    void AddString(const char *key, const char *value)
    {
        Add(key, JsonTree(cJSON_CreateStringReference(value)));
    }

    void AddString(const char *key, const std::string &value)
    {
        AddString(key, value.c_str());
    }

    void AddString(const char *key, std::string &&value) = delete;  // would not outlive the object

    void AddNumber(const char *key, double value)
    {
        Add(key, JsonTree(cJSON_CreateNumber(value)));
    }

    void AddBool(const char *key, bool value)
    {
        Add(key, JsonTree(cJSON_CreateBool(value ? 1 : 0)));
    }

    void AddObject(const char *key, JsonObject value)
    {
        Add(key, std::move(value.tree_));
    }

    void Add(const char *key, JsonTree item)
    {
        if (cJSON_AddItemToObjectCS(tree_.get(), key, item.get()) == 0) {
            tree_.reset();
            return;
        }
        static_cast<void>(item.release());  // the tree owns it now
    }

    // Returns the object with one member per line, indented; null if allocation fails.
    JsonString Print() const
    {
        return JsonString(cJSON_Print(tree_.get()));
    }

    // Returns the object without whitespace; null if allocation fails.
    JsonString PrintUnformatted() const
    {
        return JsonString(cJSON_PrintUnformatted(tree_.get()));
    }

private:
    JsonTree tree_;
};

}  // namespace OHOS::DistributedHardware::OstraAdapter

#endif  // COMMON_JSON_OBJECT_H
