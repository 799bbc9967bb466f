// Keys and values, read and written through the library's interface.
#ifndef QXREG_TREE_H
#define QXREG_TREE_H

#include <functional>
#include <string>
#include <vector>

#include "key.h"
#include "value.h"

// All throw Failure for what is not there, and for what the store refuses. A root that nobody has
// written to yet is empty.

std::vector<std::u16string> SubkeysOf(const Key& key);
std::vector<Value> ValuesOf(const Key& key);
Value ReadValue(const Key& key, const std::u16string& name);
bool HasKey(const Key& key);
bool HasValue(const Key& key, const std::u16string& name);

// The key, and all that are below it, each before those below itself. A key that goes meanwhile is
// left out.
void Walk(const Key& key, const std::function<void(const Key&, const std::vector<Value>&)>& visit);

// Makes the key and what is missing along its path.
void MakeKey(const Key& key);
void WriteValue(const Key& key, const Value& value);
void DeleteValue(const Key& key, const std::u16string& name);
// With all that is below it. A root is emptied.
void DeleteKey(const Key& key);

#endif
