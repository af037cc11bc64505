"""The embedded data centre as a test uses it: started in the world, told what to answer, asked what it saw."""

import json
import os
import socket
import socketserver
import subprocess
import threading
import urllib.error
import urllib.parse
import urllib.request

from harness import machine, places

ADDRESS = machine.LISTEN_ADDRESS + ":443"
CONTROL = "127.0.0.1:8087"
# A proxy variable of the caller's environment must not get between.
_opener = urllib.request.build_opener(urllib.request.ProxyHandler({}))


class DataCentre:
    def __init__(self, folder, hosts):
        self._folder = folder
        self.changed_image = False
        self.images = folder / "images"
        self.images.mkdir(parents=True, exist_ok=True)
        self._log = open(folder / "requests.log", "wb")
        self._command("authority", "--data", folder, *[word for host in hosts for word in ("--host", host)])
        machine.trust(folder / "authority.pem")
        self._process = None

    def _command(self, *words):
        subprocess.run([places.DATACENTRE, *words], check=True, stdout=subprocess.DEVNULL, stderr=self._log)

    def make_agent_image(self, version):
        self.changed_image = False
        self._command("image", "agent", "--output", self.images / "OvraMac.dmg", "--agent", places.AGENT,
                      "--version", version)

    @property
    def agent_image(self):
        return self.images / "OvraMac.dmg"

    def replace_agent_image(self, content):
        """Serves these bytes as the image, until the next test."""
        self.changed_image = True
        self.agent_image.write_bytes(content)

    def upgrade_agent_image(self, version):
        """Serves an image of this version, until the next test."""
        self.make_agent_image(version)
        self.changed_image = True

    @property
    def application_image(self):
        return self.images / "OvraTesselLumora.dmg"

    def provide_application_image(self, version, bundle=places.BUILT_BUNDLE):
        """Serves an image of this application, made once for the module."""
        made = self._folder / f"{version}.dmg"
        if not made.exists():
            self._command("image", "application", "--output", made, "--bundle", bundle, "--version", version)
        self.application_image.unlink(missing_ok=True)
        os.link(made, self.application_image)

    def replace_application_image(self, content):
        """Serves these bytes as the application's image, until the next test."""
        self.application_image.unlink(missing_ok=True)
        self.application_image.write_bytes(content)

    def serve(self):
        self._process = subprocess.Popen(
            [places.DATACENTRE, "serve", "--data", self._folder, "--listen", ADDRESS, "--control", CONTROL,
             "--images", self.images, "--drive", "--page", "join"], stdout=subprocess.PIPE, stderr=self._log)
        if not self._process.stdout.readline().startswith(b"ready"):
            raise AssertionError(f"the data centre did not start, see {self._log.name}")

    def shut_down(self):
        self._process.terminate()
        self._process.wait(timeout=20)
        self._process.stdout.close()
        self._log.close()

    def reset(self):
        """As after a start: nothing misbehaves, no answer is replaced, no request is remembered."""
        self.control("DELETE", "/behaviour")
        self.control("DELETE", "/tls")
        self.control("DELETE", "/page")
        self.answer(agent=None, application=None, service_domain=None)
        self.control("DELETE", "/requests")

    def control(self, method, path, body=None, timeout=60):
        data = None if body is None else json.dumps(body).encode()
        request = urllib.request.Request(f"http://{CONTROL}{path}", data=data, method=method)
        if data is not None:
            request.add_header("Content-Type", "application/json")
        try:
            with _opener.open(request, timeout=timeout) as answer:
                text = answer.read()
        except urllib.error.HTTPError as error:
            text = error.read()
            if error.code != 504:
                raise AssertionError(f"{method} {path}: {error.code} {text!r}") from error
        return json.loads(text) if text else None

    def requests(self, path=None, host=None):
        return [one for one in self.control("GET", "/requests")
                if (path is None or one["path"] == path) and (host is None or one["host"] == host)]

    def answer(self, **bodies):
        """agent, application, service_domain: a string is sent as it is, None brings the normal answer back."""
        self.control("PUT", "/answers", bodies)

    def behave(self, path, **behaviour):
        self.control("PUT", "/behaviour?path=" + urllib.parse.quote(path, safe=""), behaviour)

    def tls(self, **manner):
        self.control("PUT", "/tls", manner)

    def page(self, html):
        self.control("PUT", "/page", {"html": html})


def forwarded_port(case):
    """Another port of the data centre's address that leads to it, until the test ends."""
    host, port = ADDRESS.rsplit(":", 1)

    class Forwarding(socketserver.BaseRequestHandler):
        def handle(self):
            with socket.create_connection((host, int(port))) as target:
                back = threading.Thread(target=_pump, args=(target, self.request))
                back.start()
                _pump(self.request, target)
                back.join()

    server = socketserver.ThreadingTCPServer((host, 0), Forwarding)
    server.daemon_threads = True
    threading.Thread(target=server.serve_forever, daemon=True).start()
    case.addCleanup(server.server_close)
    case.addCleanup(server.shutdown)
    return server.server_address[1]


def _pump(source, target):
    """Until either end has had enough."""
    try:
        while data := source.recv(65536):
            target.sendall(data)
        target.shutdown(socket.SHUT_WR)
    except OSError:
        pass
