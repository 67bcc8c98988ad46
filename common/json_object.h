// SPDX-License-Identifier: Apache-2.0
//
// Owners for what cJSON hands out, so that each tree and each printed text is released on every path.

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

struct FreeJsonText {
    void operator()(char *text) const
    {
        cJSON_free(text);
    }
};
using JsonText = std::unique_ptr<char, FreeJsonText>;

// A JSON object under construction. It refers to the keys and texts that it is given instead of copying them, which
// halves the allocations of a document: all must outlive it. When memory runs out it becomes null, so that it is either
// whole or not there at all; adding to a null object does nothing.
class JsonObject {
public:
    JsonObject() : tree_(cJSON_CreateObject())
    {
    }

    bool IsNull() const
    {
        return tree_ == nullptr;
    }

    void AddString(const char *key, const char *text)
    {
        Add(key, JsonTree(cJSON_CreateStringReference(text)));
    }

    void AddString(const char *key, const std::string &text)
    {
        AddString(key, text.c_str());
    }

    void AddString(const char *key, std::string &&text) = delete;  // would not outlive the object

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

    // One member a line, indented; null when memory runs out.
    JsonText Print() const
    {
        return JsonText(cJSON_Print(tree_.get()));
    }

    // Without white space; null when memory runs out.
    JsonText PrintUnformatted() const
    {
        return JsonText(cJSON_PrintUnformatted(tree_.get()));
    }

private:
    JsonTree tree_;
};

}  // namespace OHOS::DistributedHardware::OstraAdapter

#endif  // COMMON_JSON_OBJECT_H
