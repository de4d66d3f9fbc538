// Collection and cResultSet.
#include <string>

#include "lotrix/collection.h"
#include "lotrix/result_set.h"
#include "python/arguments.h"
#include "python/bindings.h"
#include "python/values.h"
#include "src/errors/raise_error.h"
#include "src/platform/numbers.h"
#include "src/platform/values.h"

namespace lotrix::python {

namespace {

constexpr ParameterType kLong = ParameterType::kLong;
constexpr ParameterType kString = ParameterType::kString;
constexpr ParameterType kVariant = ParameterType::kVariant;

using SharedCollection = std::shared_ptr<Collection>;
using SharedResult = std::shared_ptr<cResultSet>;

std::string Key(std::int32_t number) { return NumberText(std::int64_t{number}); }

py::object ItemAt(const Collection& collection, py::handle index) {
  if (py::isinstance<py::str>(index)) return ToPython(collection.Item(TextFrom(index).str()));
  return ToPython(collection.Item(LongFrom(index)));
}

void RemoveAt(Collection& collection, py::handle index) {
  if (py::isinstance<py::str>(index)) {
    collection.Remove(TextFrom(index).str());
  } else {
    collection.Remove(LongFrom(index));
  }
}

// By position each time, so that whatever is done meanwhile is no harm.
Iterator ItemsOf(const SharedCollection& collection) {
  return {[collection, position = std::int32_t{0}]() mutable -> py::object {
    if (position >= collection->Count()) return {};
    return ToPython(collection->Item(++position));
  }};
}

// Nothing, or a collection; throws 13 for anything else.
SharedCollection CollectionFrom(py::handle object) {
  if (!object || object.is_none()) return nullptr;
  if (!py::isinstance<Collection>(object)) RaiseRuntimeError(RuntimeError::kTypeMismatch);
  return py::cast<SharedCollection>(object);
}

std::int32_t CountOf(const SharedCollection& collection) {
  return collection == nullptr ? 0 : collection->Count();
}

py::object Cell(const Value& cell) {
  if (std::holds_alternative<Null>(cell) || std::holds_alternative<Empty>(cell)) return py::none();
  return ToStr(ToText(cell));
}

// By key, as GetValue reads: a cell that was set stands last in its row.
py::object Row(const Value& item) {
  const auto* const row = std::get_if<SharedCollection>(&item);
  if (row == nullptr || *row == nullptr) RaiseRuntimeError(RuntimeError::kTypeMismatch);
  const std::int32_t columns = (*row)->Count();
  py::tuple cells(columns);
  for (std::int32_t column = 1; column <= columns; ++column) {
    cells[static_cast<std::size_t>(column) - 1] = Cell((*row)->Item(Key(column)));
  }
  return cells;
}

Iterator RowsOf(const SharedResult& result) {
  return {[result, row = std::int32_t{0}]() mutable -> py::object {
    if (row >= CountOf(result->Data())) return {};
    return Row(result->Data()->Item(Key(++row)));
  }};
}

py::list HeadersOf(const cResultSet& result) {
  py::list headers;
  for (std::int32_t column = 1; column <= CountOf(result.Headers()); ++column) {
    headers.append(Cell(result.Headers()->Item(Key(column))));
  }
  return headers;
}

void DefineCollection(py::module_& module) {
  const char* const doc =
      "A keyed, ordered list. Items stand at positions counted from 1 and may have a text\n"
      "key, compared without regard to case: collection['2'] is the item under that key,\n"
      "collection[2] the second one. Iteration is over the items, in their order.";
  py::class_<Collection, SharedCollection> type(module, "Collection", doc);
  DefineConstructor(type, {},
                    [](const Arguments& /*given*/) { return std::make_shared<Collection>(); });
  type.def_property_readonly(
          "Count", [](const SharedCollection& self) { return self->Count(); },
          "The number of items.")
      .def("__len__", [](const SharedCollection& self) { return self->Count(); })
      .def("__iter__", &ItemsOf)
      .def("__getitem__", [](const SharedCollection& self, const py::object& index) {
        return ItemAt(*self, index);
      });
  DefineMethod(type, "Add", {Required("Item", kVariant), Optional("Key", kVariant)},
               "Puts an item behind the last. Raises 457 for a key that is there already.",
               [](const SharedCollection& self, const Arguments& given) -> py::object {
                 if (given[1]) {
                   self->Add(FromPython(given[0]), TextFrom(given[1]));
                 } else {
                   self->Add(FromPython(given[0]));
                 }
                 return py::none();
               });
  DefineMethod(type, "Item", {Required("Index", kVariant)},
               "By key (str) or position. Raises 5 for a key that is not there, 9 for a position\n"
               "outside 1 to Count.",
               [](const SharedCollection& self, const Arguments& given) -> py::object {
                 return ItemAt(*self, given[0]);
               });
  DefineMethod(type, "Remove", {Required("Index", kVariant)},
               "By key (str) or position. Raises as Item does.",
               [](const SharedCollection& self, const Arguments& given) -> py::object {
                 RemoveAt(*self, given[0]);
                 return py::none();
               });
}

void DefineResultSet(py::module_& module) {
  const char* const doc =
      "The table that every read returns, or that a program makes. Rows and columns are\n"
      "counted from 1. Iteration is over the rows, each a tuple of str, and None for a Null;\n"
      "len() is the number of rows that are there, whatever Rows says.";
  py::class_<cResultSet, SharedResult> type(module, "cResultSet", doc);
  DefineConstructor(type, {},
                    [](const Arguments& /*given*/) { return std::make_shared<cResultSet>(); });
  type.def_property(
          "Cols", [](const SharedResult& self) { return self->Cols(); },
          [](const SharedResult& self, const py::object& value) { self->Cols(LongFrom(value)); },
          "The number of columns; a plain property.")
      .def_property(
          "Rows", [](const SharedResult& self) { return self->Rows(); },
          [](const SharedResult& self, const py::object& value) { self->Rows(LongFrom(value)); },
          "The number of rows; a plain property.")
      .def_property(
          "Data", [](const SharedResult& self) { return self->Data(); },
          [](const SharedResult& self, const py::object& value) {
            self->Data(CollectionFrom(value));
          },
          "The Collection of rows, each a Collection of cells; the table's own, no copy.")
      .def_property(
          "Headers", [](const SharedResult& self) { return self->Headers(); },
          [](const SharedResult& self, const py::object& value) {
            self->Headers(CollectionFrom(value));
          },
          "The Collection of the column names; the table's own, no copy.")
      .def_property_readonly(
          "headers", [](const SharedResult& self) { return HeadersOf(*self); },
          "The column names as a list of str.")
      .def("__len__", [](const SharedResult& self) { return CountOf(self->Data()); })
      .def("__iter__", &RowsOf)
      .def("__repr__", [](const SharedResult& self) {
        return "<lotrix.cResultSet: " + Key(CountOf(self->Data())) + " rows, " + Key(self->Cols()) +
               " columns>";
      });
  DefineMethod(type, "CLEAR", {}, "Back to the state of a new table.",
               [](const SharedResult& self, const Arguments& /*given*/) -> py::object {
                 self->CLEAR();
                 return py::none();
               });
  DefineMethod(type, "SetValue",
               {Required("aRow", kLong), Required("aCol", kLong), Required("aValue", kString)},
               "Sets a cell. The row moves to the last position, under its own key.",
               [](const SharedResult& self, const Arguments& given) -> py::object {
                 const std::int32_t row = LongFrom(given[0]);
                 const std::int32_t column = LongFrom(given[1]);
                 self->SetValue(row, column, TextFrom(given[2]));
                 return py::none();
               });
  DefineMethod(type, "GetValue", {Required("aRow", kLong), Required("aCol", kLong)},
               "A cell as str; the empty text for a Null.",
               [](const SharedResult& self, const Arguments& given) -> py::object {
                 const std::int32_t row = LongFrom(given[0]);
                 return ToStr(self->GetValue(row, LongFrom(given[1])));
               });
  DefineMethod(type, "AddRow", {Optional("aCollection", kVariant)},
               "Appends a row of Cols empty texts, or the Collection that is given.",
               [](const SharedResult& self, const Arguments& given) -> py::object {
                 if (given[0]) {
                   self->AddRow(CollectionFrom(given[0]));
                 } else {
                   self->AddRow();
                 }
                 return py::none();
               });
  DefineMethod(type, "DeleteRow", {Required("aRow", kLong)},
               "Removes the row at that position and numbers the rest anew.",
               [](const SharedResult& self, const Arguments& given) -> py::object {
                 self->DeleteRow(LongFrom(given[0]));
                 return py::none();
               });
}

}  // namespace

void DefineTables(py::module_& module) {
  py::class_<Iterator, std::shared_ptr<Iterator>>(module, "_Iterator")
      .def("__iter__", [](const py::object& self) { return self; })
      .def("__next__", [](const std::shared_ptr<Iterator>& self) {
        py::object next = self->next();
        if (!next) throw py::stop_iteration();
        return next;
      });
  DefineCollection(module);
  DefineResultSet(module);
}

}  // namespace lotrix::python
