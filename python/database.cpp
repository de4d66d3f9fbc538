// Connection, Recordset, Fields and Field.
#include <string>

#include "lotrix/recordset.h"
#include "lotrix/schema.h"
#include "python/arguments.h"
#include "python/bindings.h"
#include "python/values.h"
#include "src/errors/raise_error.h"

namespace lotrix::python {

namespace {

constexpr ParameterType kLong = ParameterType::kLong;
constexpr ParameterType kString = ParameterType::kString;
constexpr ParameterType kVariant = ParameterType::kVariant;

using SharedConnection = std::shared_ptr<ConnectionObject>;

struct RecordsetObject {
  RecordsetObject() = default;
  ~RecordsetObject() { gate->Drop(std::move(recordset)); }
  RecordsetObject(const RecordsetObject&) = delete;
  RecordsetObject& operator=(const RecordsetObject&) = delete;

  std::shared_ptr<Gate> gate = std::make_shared<Gate>();
  SharedConnection connection;  // kept while there are records to read
  std::unique_ptr<Recordset> recordset = std::make_unique<Recordset>();
};
using SharedRecordset = std::shared_ptr<RecordsetObject>;

struct FieldsObject {
  SharedRecordset of;
};

// Looked up anew at each use: the recordset may have other fields by then.
struct FieldObject {
  SharedRecordset of;
  std::int32_t index = 0;
};

template <class Object>
using Class = py::class_<Object, std::shared_ptr<Object>>;

std::int32_t StateOf(ObjectState state) { return static_cast<std::int32_t>(state); }

SharedConnection ConnectionFrom(py::handle object) {
  if (!py::isinstance<ConnectionObject>(object)) RaiseRuntimeError(RuntimeError::kTypeMismatch);
  return py::cast<SharedConnection>(object);
}

ConnectMode ModeFrom(py::handle object) {
  const std::int32_t mode = LongFrom(object);
  if (mode < static_cast<std::int32_t>(ConnectMode::kUnknown) ||
      mode > static_cast<std::int32_t>(ConnectMode::kReadWrite)) {
    RaiseRuntimeError(RuntimeError::kInvalidArgument);
  }
  return static_cast<ConnectMode>(mode);
}

// A member without arguments that works on the database.
void DefineWork(Class<ConnectionObject>& type, const std::string& name, const std::string& about,
                void (Connection::*work)()) {
  DefineMethod(type, name, {}, about,
               [work](const SharedConnection& self, const Arguments& /*given*/) -> py::object {
                 WhileOthersRun(*self->gate, [&] { ((*self->connection).*work)(); });
                 return py::none();
               });
}

py::object Open(const SharedConnection& self, const Arguments& given) {
  const Text connectionString = TextFrom(given[0]);
  const Text userId = TextFrom(given[1]);
  const Text password = TextFrom(given[2]);
  const std::int32_t options = LongFrom(given[3], -1);
  WhileOthersRun(*self->gate,
                 [&] { self->connection->Open(connectionString, userId, password, options); });
  return py::none();
}

py::object Execute(const SharedConnection& self, const Arguments& given) {
  const Text commandText = TextFrom(given[0]);
  auto made = std::make_shared<RecordsetObject>();
  made->recordset =
      WhileOthersRun(*self->gate, [&] { return self->connection->Execute(commandText); });
  made->gate = self->gate;
  made->connection = self;
  return py::cast(std::move(made));
}

py::object CloseAtExit(const SharedConnection& self) {
  WhileOthersRun(*self->gate, [&] {
    if (self->connection->State() == ObjectState::kOpen) self->connection->Close();
  });
  return py::none();
}

void DefineConnection(py::module_& module) {
  const char* const doc =
      "The connection to a database, ADO-shaped: \"Provider=SQLite;Data Source=FILE\". As a\n"
      "context manager it is closed at the end. Used by one thread at a time.";
  Class<ConnectionObject> type(module, "Connection", doc);
  DefineConstructor(type, {}, [](const Arguments& /*given*/) {
    return std::make_shared<ConnectionObject>(
        ConnectionObject{std::make_shared<Gate>(), std::make_shared<Connection>()});
  });
  type.def_property(
          "ConnectionString",
          [](const SharedConnection& self) {
            const Turn turn(*self->gate);
            return ToStr(self->connection->ConnectionString());
          },
          [](const SharedConnection& self, const py::object& value) {
            const Turn turn(*self->gate);
            self->connection->ConnectionString(TextFrom(value));
          },
          "Cannot be set while the connection is open (3705).")
      .def_property(
          "Mode",
          [](const SharedConnection& self) {
            const Turn turn(*self->gate);
            return static_cast<std::int32_t>(self->connection->Mode());
          },
          [](const SharedConnection& self, const py::object& value) {
            const Turn turn(*self->gate);
            self->connection->Mode(ModeFrom(value));
          },
          "0 unknown, 1 read, 2 write, 3 read and write.")
      .def_property_readonly(
          "State",
          [](const SharedConnection& self) {
            const Turn turn(*self->gate);
            return StateOf(self->connection->State());
          },
          "1 when open, 0 when closed.")
      .def_property_readonly(
          "InTransaction",
          [](const SharedConnection& self) {
            const Turn turn(*self->gate);
            return self->connection->InTransaction();
          },
          "Whether BeginTrans waits for its CommitTrans or RollbackTrans.")
      .def("__enter__", [](const SharedConnection& self) { return self; })
      .def("__exit__",
           [](const SharedConnection& self, const py::args& /*raised*/) { CloseAtExit(self); });
  DefineMethod(type, "Open",
               {Optional("ConnectionString", kString), Optional("UserID", kString),
                Optional("Password", kString), Optional("Options", kLong, "-1")},
               "Opens the connection; an empty argument leaves the property or keyword it stands\n"
               "for. Raises 3705 when it is open already, 3706 for an unknown provider, and the\n"
               "engine's errors.",
               &Open);
  DefineMethod(type, "Execute", {Required("CommandText", kString)},
               "Runs a statement and returns its Recordset, which is closed when the statement\n"
               "returns no rows.",
               &Execute);
  DefineWork(type, "Close", "Rolls back an open transaction and closes every recordset.",
             &Connection::Close);
  DefineWork(type, "BeginTrans", "Begins a transaction; one at a time.", &Connection::BeginTrans);
  DefineWork(type, "CommitTrans", "Keeps what the transaction has changed.",
             &Connection::CommitTrans);
  DefineWork(type, "RollbackTrans", "Undoes what the transaction has changed.",
             &Connection::RollbackTrans);
  DefineWork(type, "CreateSchema", "Makes the tables and indexes that are not there yet.",
             &Connection::CreateSchema);
}

// Work on a recordset that is to be read only in turn.
template <class Work>
auto InTurn(const SharedRecordset& self, Work&& work) {
  const Turn turn(*self->gate);
  return work(*self->recordset);
}

template <class Work>
auto InTurnWhileOthersRun(const SharedRecordset& self, Work&& work) {
  return WhileOthersRun(*self->gate, [&] { return work(*self->recordset); });
}

py::object OpenRecordset(const SharedRecordset& self, const Arguments& given) {
  const Text source = TextFrom(given[0]);
  const SharedConnection connection = ConnectionFrom(given[1]);
  const auto cursor = static_cast<CursorType>(LongFrom(given[2], -1));
  const auto lock = static_cast<LockType>(LongFrom(given[3], -1));
  const auto options = static_cast<CommandType>(LongFrom(given[4], -1));
  // An open recordset is refused and stays with the connection that it has.
  if (InTurn(self, [](const Recordset& recordset) { return recordset.State(); }) ==
      ObjectState::kOpen) {
    RaiseRuntimeError(RuntimeError::kObjectIsOpen);
  }
  self->gate = connection->gate;
  self->connection = connection;
  InTurnWhileOthersRun(self, [&](Recordset& recordset) {
    recordset.Open(source, *connection->connection, cursor, lock, options);
  });
  return py::none();
}

void DefineRecordset(py::module_& module) {
  const char* const doc =
      "The rows that a statement returns, forward and read-only. Closed with its connection.";
  Class<RecordsetObject> type(module, "Recordset", doc);
  DefineConstructor(type, {},
                    [](const Arguments& /*given*/) { return std::make_shared<RecordsetObject>(); });
  type.def_property_readonly(
          "State",
          [](const SharedRecordset& self) {
            return StateOf(InTurn(self, [](const Recordset& rows) { return rows.State(); }));
          },
          "1 when open, 0 when closed.")
      .def_property_readonly(
          "RecordCount",
          [](const SharedRecordset& self) {
            return InTurnWhileOthersRun(self, [](Recordset& rows) { return rows.RecordCount(); });
          },
          "All the records of the query; fetches the rest of them.")
      .def_property_readonly(
          "EOF",
          [](const SharedRecordset& self) {
            return InTurn(self, [](const Recordset& rows) { return rows.EndOfFile(); });
          },
          "Whether the last record has been passed.")
      .def_property_readonly(
          "Fields",
          [](const SharedRecordset& self) {
            InTurn(self, [](const Recordset& rows) { static_cast<void>(rows.Fields()); });
            return std::make_shared<FieldsObject>(FieldsObject{self});
          },
          "The columns of the record that the recordset stands on.");
  DefineMethod(type, "Open",
               {Required("Source", kString), Required("ActiveConnection", kVariant),
                Optional("CursorType", kLong, "-1"), Optional("LockType", kLong, "-1"),
                Optional("Options", kLong, "-1")},
               "Runs the text on the Connection and stands on the first record.", &OpenRecordset);
  DefineMethod(type, "MoveNext", {}, "To the next record. Raises 3021 at the end.",
               [](const SharedRecordset& self, const Arguments& /*given*/) -> py::object {
                 InTurnWhileOthersRun(self, [](Recordset& rows) { rows.MoveNext(); });
                 return py::none();
               });
  DefineMethod(type, "Close", {}, "Raises 3704 when it is closed already.",
               [](const SharedRecordset& self, const Arguments& /*given*/) -> py::object {
                 InTurnWhileOthersRun(self, [](Recordset& rows) { rows.Close(); });
                 return py::none();
               });
}

std::int32_t FieldCount(const SharedRecordset& of) {
  return InTurn(of, [](const Recordset& rows) { return rows.Fields().Count(); });
}

std::shared_ptr<FieldObject> FieldAt(const SharedRecordset& of, std::int32_t index) {
  InTurn(of, [&](const Recordset& rows) { static_cast<void>(rows.Fields().Item(index)); });
  return std::make_shared<FieldObject>(FieldObject{of, index});
}

std::int32_t IndexOfName(const Fields& fields, std::string_view name) {
  const std::string found = fields.Item(name).Name();
  std::int32_t index = 0;
  while (fields.Item(index).Name() != found) ++index;
  return index;
}

// By name, or by number counted from 0.
std::shared_ptr<FieldObject> FieldFor(const SharedRecordset& of, py::handle index) {
  if (!py::isinstance<py::str>(index)) return FieldAt(of, LongFrom(index));
  const Text name = TextFrom(index);
  return FieldAt(
      of, InTurn(of, [&](const Recordset& rows) { return IndexOfName(rows.Fields(), name); }));
}

void DefineFields(py::module_& module) {
  Class<FieldsObject> type(module, "Fields", "The columns of a Recordset.");
  using Self = std::shared_ptr<FieldsObject>;
  type.def_property_readonly(
          "Count", [](const Self& self) { return FieldCount(self->of); }, "How many there are.")
      .def("__len__", [](const Self& self) { return FieldCount(self->of); })
      .def("__getitem__",
           [](const Self& self, const py::object& index) { return FieldFor(self->of, index); })
      .def("__iter__", [](const Self& self) {
        return Iterator{[of = self->of, index = std::int32_t{0}]() mutable -> py::object {
          if (index >= FieldCount(of)) return {};
          return py::cast(FieldAt(of, index++));
        }};
      });
  DefineMethod(type, "Item", {Required("Index", kVariant)},
               "By number counted from 0, or by name without regard to case. Raises 9 and 5 for\n"
               "a field that is not there.",
               [](const Self& self, const Arguments& given) -> py::object {
                 return py::cast(FieldFor(self->of, given[0]));
               });
}

void DefineField(py::module_& module) {
  using Self = std::shared_ptr<FieldObject>;
  const auto read = [](const Self& self, auto&& member) {
    return InTurn(self->of,
                  [&](const Recordset& rows) { return member(rows.Fields().Item(self->index)); });
  };
  Class<FieldObject>(module, "Field", "One column of the record that its Recordset stands on.")
      .def_property_readonly(
          "Name",
          [read](const Self& self) {
            return ToStr(read(self, [](const Field& field) { return field.Name(); }));
          },
          "The column's name, in lower case.")
      .def_property_readonly(
          "Type",
          [read](const Self& self) {
            return static_cast<std::int32_t>(
                read(self, [](const Field& field) { return field.Type(); }));
          },
          "ADO's number: 3 whole, 5 double, 11 logical, 20 large whole, 133 date, 202 text.")
      .def_property_readonly(
          "Value",
          [read](const Self& self) {
            return ToPython(read(self, [](const Field& field) { return field.Value(); }));
          },
          "None, bool, int, float, datetime.date or str. Raises 3021 at the end of data.");
}

void DefineSampleData(py::module_& module) {
  static const Parameters kParameters = {Required("connection", kVariant),
                                         Optional("seed", kLong, "1")};
  const std::string doc =
      Docstring("AddSampleData", false, kParameters,
                "Adds a small state's vaccine programme to tables that CreateSchema has made; one\n"
                "seed gives the same rows everywhere. Returns whether it did: False when there\n"
                "are rows already.");
  module.def(
      "AddSampleData",
      [](const py::args& inOrder, const py::kwargs& byName) {
        const Arguments given = InOrder(kParameters, inOrder, byName);
        const SharedConnection connection = ConnectionFrom(given[0]);
        const auto seed = static_cast<std::uint32_t>(LongFrom(given[1], 1));
        return WhileOthersRun(*connection->gate,
                              [&] { return AddSampleData(*connection->connection, seed); });
      },
      doc.c_str());
}

}  // namespace

void DefineDatabase(py::module_& module) {
  DefineConnection(module);
  DefineRecordset(module);
  DefineFields(module);
  DefineField(module);
  DefineSampleData(module);
}

}  // namespace lotrix::python
