// cLotrix, made from the published member table.
#include <optional>
#include <string>

#include "lotrix/members.h"
#include "python/arguments.h"
#include "python/bindings.h"
#include "python/callbacks.h"
#include "python/values.h"

namespace lotrix::python {

namespace {

struct LotrixObject {
  LotrixObject(py::object notify, py::object clock, std::string logPath)
      : callbacks(std::move(notify), std::move(clock)),
        service(std::in_place, callbacks.MakeHost(std::move(logPath))) {}
  ~LotrixObject() {
    service.reset();
    callbacks.ReportFailure();
  }
  LotrixObject(const LotrixObject&) = delete;
  LotrixObject& operator=(const LotrixObject&) = delete;

  Callbacks callbacks;
  std::shared_ptr<Gate> gate = std::make_shared<Gate>();
  std::optional<cLotrix> service;
  std::shared_ptr<ConnectionObject> connection;  // once it has been handed out
};
using Shared = std::shared_ptr<LotrixObject>;
using Class = py::class_<LotrixObject, Shared>;

// The answer of a member, or what a callback has raised in its course.
CallResult Answer(LotrixObject& self, const Member& member,
                  const std::vector<Argument>& arguments) {
  const Turn turn(*self.gate);
  try {
    const py::gil_scoped_release others;
    return lotrix::Call(*self.service, member, arguments);
  } catch (...) {
    self.callbacks.ThrowFailure();
    throw;
  }
}

// One object for the connection, however often it is read.
py::object ConnectionOf(LotrixObject& self, std::shared_ptr<Connection> connection) {
  if (self.connection == nullptr) {
    self.connection =
        std::make_shared<ConnectionObject>(ConnectionObject{self.gate, std::move(connection)});
  }
  return py::cast(self.connection);
}

py::object CallMember(const Shared& self, const Member& member, const Arguments& given) {
  std::vector<Argument> arguments;
  for (const py::object& argument : given) {
    arguments.push_back(argument ? Argument(FromPython(argument)) : std::nullopt);
  }
  CallResult result = Answer(*self, member, arguments);
  if (auto* const table = std::get_if<cResultSet>(&result)) {
    return py::cast(std::make_shared<cResultSet>(std::move(*table)));
  }
  if (auto* const connection = std::get_if<std::shared_ptr<Connection>>(&result)) {
    return ConnectionOf(*self, std::move(*connection));
  }
  return py::none();
}

std::string About(const Member& member) {
  std::string about = member.result.empty() ? "Returns None." : "Returns a cResultSet.";
  for (const Parameter& parameter : member.parameters) {
    about += about.ends_with('.') ? " Parameters:" : ",";
    about += "\n    " + std::string(parameter.name) + ": " +
             std::string(ParameterTypeName(parameter.type)) +
             (parameter.optional ? ", may be omitted" : "");
  }
  return about;
}

void DefineMember(Class& type, const Member& member) {
  if (member.kind == MemberKind::kPropertyGet) {
    type.def_property_readonly(
        std::string(member.name).c_str(),
        [&member](const Shared& self) { return CallMember(self, member, {}); },
        "The open connection: opened if it is not, with the string given last.");
    return;
  }
  DefineMethod(type, std::string(member.name), member.parameters, About(member),
               [&member](const Shared& self, const Arguments& given) {
                 return CallMember(self, member, given);
               });
}

Parameters ConstructorParameters() {
  constexpr ParameterType kVariant = ParameterType::kVariant;
  return {Optional("connection_string", kVariant), Optional("log_path", kVariant),
          Optional("notify", kVariant), Optional("clock", kVariant)};
}

std::string PathFrom(const py::object& path) {
  if (!path) return {};
  return py::module_::import("os").attr("fsencode")(path).cast<std::string>();
}

Shared Make(const Arguments& given) {
  auto made = std::make_shared<LotrixObject>(given[2], given[3], PathFrom(given[1]));
  if (given[0]) CallMember(made, MemberNamed("openConnection"), {given[0]});
  return made;
}

// Nothing for an object whose constructor has not run.
LotrixObject* Content(PyObject* object) {
  auto* const instance = reinterpret_cast<py::detail::instance*>(object);
  const py::detail::value_and_holder held = instance->get_value_and_holder();
  return held.holder_constructed() ? static_cast<LotrixObject*>(held.value_ptr()) : nullptr;
}

int Visit(PyObject* object, visitproc visit, void* argument) {
  // The names that the interpreter's macro wants.
  void* const arg = argument;
  Py_VISIT(Py_TYPE(object));
  const LotrixObject* const content = Content(object);
  return content == nullptr ? 0 : content->callbacks.Visit(visit, argument);
}

int Clear(PyObject* object) {
  if (LotrixObject* const content = Content(object)) content->callbacks.Clear();
  return 0;
}

void TakePartInCollection(PyHeapTypeObject* heapType) {
  PyTypeObject& type = heapType->ht_type;
  type.tp_flags |= Py_TPFLAGS_HAVE_GC;
  type.tp_traverse = &Visit;
  type.tp_clear = &Clear;
}

}  // namespace

void DefineComponent(py::module_& module) {
  const char* const doc =
      "One checked door to the vaccine-management database. A connection string that is given\n"
      "goes to openConnection. log_path is the trace log's file; notify(text) shows the text\n"
      "of CheckVaccActive, which else goes to standard error; clock() returns the present as\n"
      "a datetime. As a context manager it closes its connection at the end. Used by one\n"
      "thread; a call while another is on raises RuntimeError.";
  Class type(module, "cLotrix", py::custom_type_setup(&TakePartInCollection), doc);
  DefineConstructor(type, ConstructorParameters(), &Make);
  type.def("__enter__", [](const Shared& self) { return self; })
      .def("__exit__", [](const Shared& self, const py::args& /*raised*/) {
        CallMember(self, MemberNamed("closeConnection"), {});
      });
  for (const Member& member : Members()) DefineMember(type, member);
}

}  // namespace lotrix::python
