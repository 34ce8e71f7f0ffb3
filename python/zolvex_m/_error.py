"""The exception every failed call of the library raises."""


class Error(RuntimeError):
    """A call of libzolvex-m returned a status other than success.

    ``status`` is the library's status code (negative), ``text`` its
    status text ("Failed", "Error data length", ...).
    """

    def __init__(self, status: int, text: str):
        super().__init__(f"{text} (status {status})")
        self.status = status
        self.text = text

    def __reduce__(self):
        return (Error, (self.status, self.text))
