"""What the component raises."""

from typing import cast


class Error(Exception):
    """A call was refused or failed.

    number -- what a program may rely on: hexadecimal 80040000 plus the rule's code, a
        run-time number such as 13 (type mismatch), or an engine's such as 80040E14, all
        as signed 32-bit numbers
    description -- the words for it
    source -- "LOTRIX DLL" for what an operation raises, else "Lotrix"
    engineCode -- the database engine's own code, 0 when there is none
    """

    def __init__(
        self, number: int, description: str = "", source: str = "Lotrix", engineCode: int = 0
    ) -> None:
        super().__init__(number, description, source, engineCode)

    @property
    def number(self) -> int:
        return cast(int, self.args[0])

    @property
    def description(self) -> str:
        return cast(str, self.args[1])

    @property
    def source(self) -> str:
        return cast(str, self.args[2])

    @property
    def engineCode(self) -> int:
        return cast(int, self.args[3])

    def __str__(self) -> str:
        return f"{self.description} ({self.source}, {self.number})"


class ArgumentError(Error, TypeError):
    """A member was called with arguments that it does not take.

    number is 448 for an unknown name, 449 for a required argument that is omitted and
    450 for too many arguments.
    """


# Programs catch them as members of the package.
Error.__module__ = ArgumentError.__module__ = "lotrix"
