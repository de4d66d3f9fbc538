"""What a type checker is told is what there is."""

import ast
import inspect
import pathlib

import pytest

import lotrix

STUB = ast.parse(pathlib.Path(lotrix.__file__).with_suffix(".pyi").read_text())
CLASSES = {node.name: node for node in STUB.body if isinstance(node, ast.ClassDef)}
FUNCTIONS = {node.name: node for node in STUB.body if isinstance(node, ast.FunctionDef)}
# What the interpreter asks for has no signature to compare.
PROTOCOL = {"__len__", "__iter__", "__getitem__", "__enter__", "__exit__"}


def parameters_of_stub(function):
    arguments = function.args
    assert not (arguments.posonlyargs or arguments.kwonlyargs or arguments.vararg)
    first = len(arguments.args) - len(arguments.defaults)
    defaults = [inspect.Parameter.empty] * first
    defaults += [ast.literal_eval(default) for default in arguments.defaults]
    return [(argument.arg, default) for argument, default in zip(arguments.args, defaults)]


def parameters_of(function):
    return [(parameter.name, parameter.default)
            for parameter in inspect.signature(function).parameters.values()]


def is_property(function):
    return any(ast.unparse(decorator) == "property" for decorator in function.decorator_list)


def is_setter(function):
    return any(ast.unparse(decorator).endswith(".setter") for decorator in function.decorator_list)


def members(name):
    return [node for node in CLASSES[name].body if isinstance(node, ast.FunctionDef)]


def test_every_public_name_is_told():
    told = next(ast.literal_eval(node.value) for node in STUB.body if isinstance(node, ast.Assign)
                and ast.unparse(node.targets[0]) == "__all__")
    assert told == lotrix.__all__
    assert sorted([*CLASSES, *FUNCTIONS, "__version__"]) == sorted(told)
    assert {name for name in vars(lotrix) if not name.startswith("_")} <= set(told)


@pytest.mark.parametrize("name", CLASSES)
def test_every_member_is_told(name):
    kind = getattr(lotrix, name)
    told = {member.name for member in members(name)}
    there = {member for member in vars(kind)
             if not member.startswith("_") or member in PROTOCOL}
    assert told - {"__init__"} == there


@pytest.mark.parametrize("name, function", [
    (name, function) for name in CLASSES for function in members(name)
    if function.name not in PROTOCOL and not is_setter(function)
], ids=lambda value: value if isinstance(value, str) else value.name)
def test_members_are_as_told(name, function):
    there = inspect.getattr_static(getattr(lotrix, name), function.name)
    if is_property(function):
        assert isinstance(there, property)
        settable = any(is_setter(other) and other.name == function.name
                       for other in members(name))
        assert (there.fset is not None) == settable
    else:
        there = getattr(getattr(lotrix, name), function.name)
        assert parameters_of_stub(function) == parameters_of(there)


@pytest.mark.parametrize("name", FUNCTIONS)
def test_functions_are_as_told(name):
    assert parameters_of_stub(FUNCTIONS[name]) == parameters_of(getattr(lotrix, name))


@pytest.mark.parametrize("function", members("cLotrix"), ids=lambda function: function.name)
def test_results_are_as_published(function):
    about = inspect.getdoc(getattr(lotrix.cLotrix, function.name)) or ""
    if about.startswith("Returns "):
        told = ast.unparse(function.returns)
        assert about.startswith("Returns None." if told == "None" else f"Returns a {told}.")
    else:
        assert function.name.startswith("__") or is_property(function)


def test_the_package_says_that_it_is_typed():
    assert pathlib.Path(lotrix.__file__).with_name("py.typed").exists()
