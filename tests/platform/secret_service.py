"""A secret service for python3-dbusmock whose questions the test answers. One collection, "plain" sessions only.

The test steers it through the interface org.freedesktop.DBus.Mock of the main object: SetLocked, SetAnswer, Prompts and
so on, below. What it hides or leaves unsaid is what services have been seen to hide or leave unsaid.
"""

import dbus
from dbusmock import MOCK_IFACE, get_object

BUS_NAME = "org.freedesktop.secrets"
MAIN_OBJ = "/org/freedesktop/secrets"
MAIN_IFACE = "org.freedesktop.Secret.Service"
SYSTEM_BUS = False

COLLECTION_IFACE = "org.freedesktop.Secret.Collection"
ITEM_IFACE = "org.freedesktop.Secret.Item"
PROMPT_IFACE = "org.freedesktop.Secret.Prompt"
COLLECTION = MAIN_OBJ + "/collection/only"
NOTHING = dbus.ObjectPath("/")


def load(mock, _parameters):
    mock.AddProperties(MAIN_IFACE, {"Collections": dbus.Array([], signature="o")})
    mock.locked = False
    mock.hides_locked_items = False
    mock.says_properties = True
    mock.asks_on_write = False
    mock.refuses_sessions = False
    mock.asks_for_items = False  # each item is allowed by itself
    mock.allowed = set()
    mock.answer = "wait"
    mock.waiting = []  # prompts without an answer yet: what to do, and what the caller is told
    mock.prompts = 0
    mock.shown = 0
    mock.items = {}  # path: (attributes, secret)
    mock.CreateDefault()


def ask(mock, action):
    """A new prompt. `action` is what is done when it is accepted; it returns the result."""
    mock.prompts += 1
    path = f"{MAIN_OBJ}/prompt/p{mock.prompts}"
    mock.AddObject(path, PROMPT_IFACE, {}, [("Prompt", "s", "", "import dbusmock; "
                                             f"dbusmock.get_object('{MAIN_OBJ}').prompted('{path}')")])
    get_object(path).action = action
    return dbus.ObjectPath(path)


def prompted(mock, path):
    mock.shown += 1
    mock.waiting.append(path)
    if mock.answer != "wait":
        answer_all(mock, mock.answer == "accept")


def answer_all(mock, accepted):
    for path in mock.waiting:
        prompt = get_object(path)
        result = prompt.action() if accepted else dbus.String("", variant_level=1)
        prompt.EmitSignal(PROMPT_IFACE, "Completed", "bv", [dbus.Boolean(not accepted), result])
    mock.waiting = []


def set_locked(mock, locked):
    mock.locked = locked
    for path in [COLLECTION, *mock.items]:
        say_lock(mock, path)
    mock.EmitSignal(MAIN_IFACE, "CollectionChanged", "o", [COLLECTION])


def is_locked(mock, path):
    return mock.locked or (mock.asks_for_items and path != COLLECTION and path not in mock.allowed)


def say_lock(mock, path):
    interface = COLLECTION_IFACE if path == COLLECTION else ITEM_IFACE
    if mock.says_properties:
        get_object(path).UpdateProperties(interface, {"Locked": dbus.Boolean(is_locked(mock, path))})
    else:
        get_object(path).props[interface]["Locked"] = dbus.Boolean(is_locked(mock, path))


def create_item(mock, attributes, secret):
    """What CreateItem answers: the item, or the prompt before it."""
    if mock.asks_on_write:
        return NOTHING, ask(mock, lambda: add_item(mock, attributes, secret))
    return add_item(mock, attributes, secret), NOTHING


def add_item(mock, attributes, secret):
    for path, (present, _) in mock.items.items():
        if present == attributes:
            mock.items[path] = (attributes, secret)
            return dbus.ObjectPath(path, variant_level=1)
    path = f"{COLLECTION}/{len(mock.items) + 1}"
    mock.items[path] = (attributes, secret)
    main = f"import dbusmock; main = dbusmock.get_object('{MAIN_OBJ}'); "
    mock.AddObject(path, ITEM_IFACE, {
        "Attributes": attributes, "Label": "", "Locked": dbus.Boolean(is_locked(mock, path)),
        "Created": dbus.UInt64(0), "Modified": dbus.UInt64(0)}, [
        ("GetSecret", "o", "(oayays)", main + f"ret = main.secret_of('{path}', args[0])"),
        ("SetSecret", "(oayays)", "", main + f"main.items['{path}'] = (main.items['{path}'][0], args[0][2])"),
        ("Delete", "", "o", main + f"ret = main.delete('{path}')"),
    ])
    return dbus.ObjectPath(path, variant_level=1)


def delete(mock, path):
    def now():
        del mock.items[path]
        mock.RemoveObject(path)
        return dbus.String("", variant_level=1)
    if mock.asks_on_write:
        return ask(mock, now)
    now()
    return NOTHING


def secret_of(mock, path, session):
    if is_locked(mock, path):
        raise dbus.exceptions.DBusException("locked", name="org.freedesktop.Secret.Error.IsLocked")
    return dbus.Struct((dbus.ObjectPath(session), dbus.ByteArray(b""), mock.items[path][1], "text/plain"),
                       signature="oayays")


# what the code texts above reach through the main object
def bind(mock):
    mock.prompted = lambda path: prompted(mock, path)
    mock.delete = lambda path: delete(mock, path)
    mock.secret_of = lambda path, session: secret_of(mock, path, session)
    mock.create_item = lambda attributes, secret: create_item(mock, attributes, secret)


@dbus.service.method(MAIN_IFACE, in_signature="sv", out_signature="vo")
def OpenSession(self, algorithm, _input):
    if self.refuses_sessions:
        raise dbus.exceptions.DBusException("out of order", name="org.freedesktop.DBus.Error.Failed")
    if algorithm != "plain":
        raise dbus.exceptions.DBusException("plain only", name="org.freedesktop.DBus.Error.NotSupported")
    return dbus.String("", variant_level=1), dbus.ObjectPath(MAIN_OBJ + "/session/s1")


@dbus.service.method(MAIN_IFACE, in_signature="a{ss}", out_signature="aoao")
def SearchItems(self, attributes):
    found = [path for path, (present, _) in self.items.items() if present == attributes]
    unlocked = [path for path in found if not is_locked(self, path)]
    return unlocked, [] if self.hides_locked_items else [path for path in found if is_locked(self, path)]


@dbus.service.method(MAIN_IFACE, in_signature="aoo", out_signature="a{o(oayays)}")
def GetSecrets(self, items, session):
    return {path: secret_of(self, path, session) for path in items}


@dbus.service.method(MAIN_IFACE, in_signature="ao", out_signature="aoo")
def Unlock(self, objects):
    def now():
        if COLLECTION in objects:
            set_locked(self, False)
        for path in objects:
            self.allowed.add(str(path))
            say_lock(self, path)
        return dbus.Array(objects, signature="o", variant_level=1)
    return [], ask(self, now)


@dbus.service.method(MAIN_IFACE, in_signature="s", out_signature="o")
def ReadAlias(self, _alias):
    return dbus.ObjectPath(COLLECTION) if self.has_default else NOTHING


@dbus.service.method(MAIN_IFACE, in_signature="a{sv}s", out_signature="oo")
def CreateCollection(self, _properties, _alias):
    def now():
        self.CreateDefault()
        return dbus.ObjectPath(COLLECTION, variant_level=1)
    return NOTHING, ask(self, now)


@dbus.service.method(MOCK_IFACE, in_signature="", out_signature="")
def CreateDefault(self):
    bind(self)
    self.has_default = True
    create = (f"import dbusmock; ret = dbusmock.get_object('{MAIN_OBJ}')"
              f".create_item(args[0]['{ITEM_IFACE}.Attributes'], args[1][2])")
    self.AddObject(COLLECTION, COLLECTION_IFACE, {
        "Items": dbus.Array([], signature="o"), "Label": "Only", "Locked": dbus.Boolean(self.locked),
        "Created": dbus.UInt64(0), "Modified": dbus.UInt64(0)}, [
        ("CreateItem", "a{sv}(oayays)b", "oo", create)])


@dbus.service.method(MOCK_IFACE, in_signature="", out_signature="")
def RemoveDefault(self):
    self.has_default = False
    self.RemoveObject(COLLECTION)


@dbus.service.method(MOCK_IFACE, in_signature="b", out_signature="")
def SetLocked(self, locked):
    set_locked(self, locked)


@dbus.service.method(MOCK_IFACE, in_signature="sb", out_signature="")
def SetTrait(self, name, value):
    setattr(self, name, bool(value))
    for path in self.items:
        say_lock(self, path)


@dbus.service.method(MOCK_IFACE, in_signature="s", out_signature="")
def SetAnswer(self, answer):
    self.answer = answer
    if answer != "wait":
        answer_all(self, answer == "accept")


@dbus.service.method(MOCK_IFACE, in_signature="", out_signature="i")
def Prompts(self):
    return self.shown
