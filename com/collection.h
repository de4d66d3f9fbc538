// Collections on the boundary: ours as automation objects, and automation objects
// as collections of ours.
#ifndef LOTRIX_COM_COLLECTION_H
#define LOTRIX_COM_COLLECTION_H

#include <memory>

#include "lotrix/collection.h"
#include "lotrix_h.h"
#include "src/platform/automation.h"

namespace lotrix::com {

// The object that stands for the collection, the same one as long as anybody holds
// it, or the client's own object where the collection stands for that. Null for
// null.
[[nodiscard]] automation::Held<IDispatch> ObjectOf(const std::shared_ptr<Collection>& collection);

// The collection that one of our objects stands for, or a new one that passes
// everything on to the client's object. Null for null.
[[nodiscard]] std::shared_ptr<Collection> CollectionOf(IDispatch* object);

// Items and cells.
[[nodiscard]] automation::OwnedVariant VariantOf(const Value& value);
[[nodiscard]] Value ValueOf(const VARIANT& variant);

}  // namespace lotrix::com

#endif
