"""lotrix.Error."""

import pickle

import pytest

import lotrix


def refused_order(service):
    with pytest.raises(lotrix.Error) as refused:
        service.manufacturerProviderOrderCreateUpdate("7/4/2026", "P00001", "DTAP", 0, "1")
    return refused.value


def test_a_broken_rule(service):
    error = refused_order(service)
    assert type(error) is lotrix.Error
    assert error.number == -2147201479
    assert error.description == "The number of doses for an order must be greater than zero"
    assert error.source == "LOTRIX DLL"
    assert error.engineCode == 0


def test_it_reads_well(service):
    assert str(refused_order(service)) == (
        "The number of doses for an order must be greater than zero (LOTRIX DLL, -2147201479)")
    assert f"{lotrix.Error.__module__}.{lotrix.Error.__qualname__}" == "lotrix.Error"


def test_an_engine_error_keeps_the_engines_own_code(service):
    with pytest.raises(lotrix.Error) as refused:
        service.Connection.Execute("SELECT * FROM nosuch")
    assert refused.value.number == 0x80040E37 - 2**32
    assert refused.value.engineCode == 1


def test_it_is_an_exception_and_nothing_narrower(service):
    error = refused_order(service)
    assert isinstance(error, Exception)
    assert not isinstance(error, (TypeError, RuntimeError))


@pytest.mark.parametrize("kind", [lotrix.Error, lotrix.ArgumentError])
def test_it_travels_between_processes(kind):
    error = pickle.loads(pickle.dumps(kind(448, "Named argument not found", "Lotrix", 7)))
    assert type(error) is kind
    assert (error.number, error.description, error.source, error.engineCode) == (
        448, "Named argument not found", "Lotrix", 7)


def test_it_cannot_be_changed(service):
    error = refused_order(service)
    for name in ["number", "description", "source", "engineCode"]:
        with pytest.raises(AttributeError):
            setattr(error, name, 1)
