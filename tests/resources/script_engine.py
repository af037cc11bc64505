"""The web view's own script engine, without a web view."""
import ctypes
import json

_library = ctypes.CDLL("libjavascriptcoregtk-6.0.so.1")


def _function(name, result, *arguments):
    function = getattr(_library, name)
    function.restype, function.argtypes = result, arguments
    return function


_new = _function("jsc_context_new", ctypes.c_void_p)
_evaluate = _function("jsc_context_evaluate", ctypes.c_void_p, ctypes.c_void_p, ctypes.c_char_p, ctypes.c_ssize_t)
_exception = _function("jsc_context_get_exception", ctypes.c_void_p, ctypes.c_void_p)
_message = _function("jsc_exception_get_message", ctypes.c_char_p, ctypes.c_void_p)
_to_string = _function("jsc_value_to_string", ctypes.c_void_p, ctypes.c_void_p)
_free = _function("g_free", None, ctypes.c_void_p)
_unref = _function("g_object_unref", None, ctypes.c_void_p)


class Context:
    """One global object, as a page has; for use in a with statement."""

    def __enter__(self):
        self._context = _new()
        return self

    def __exit__(self, *_):
        _unref(self._context)

    def run(self, script):
        """The script's last value, which must be one that JSON can carry."""
        return json.loads(self._string(f"JSON.stringify({script}) ?? 'null'"))

    def load(self, script):
        self._string(script)

    def _string(self, script):
        value = _evaluate(self._context, script.encode(), -1)
        try:
            exception = _exception(self._context)
            if exception:
                raise RuntimeError(_message(exception).decode())
            text = _to_string(value)
            try:
                return ctypes.string_at(text).decode()
            finally:
                _free(text)
        finally:
            _unref(value)
