'''obexd mock with Object Push, for the tests of the Bluetooth transport.

Wraps the bluez5-obex template of python-dbusmock: CreateSession also accepts the target "opp";
such a session offers org.bluez.obex.ObjectPush1.SendFile, which copies the file into the folder
given as the parameter "inbox" (with the session's destination in "<name>.to" beside it) and
then reports the transfer active and complete. A file whose name begins with "fail" is not
copied and its transfer ends in error.
'''

import importlib
import shutil
from pathlib import Path

import dbus
from gi.repository import GLib

from dbusmock import OBJECT_MANAGER_IFACE, mockobject

base = importlib.import_module('dbusmock.templates.bluez5-obex')

BUS_NAME = base.BUS_NAME
MAIN_OBJ = base.MAIN_OBJ
SYSTEM_BUS = False
IS_OBJECT_MANAGER = True

PUSH_IFACE = 'org.bluez.obex.ObjectPush1'
SETTINGS = {}


def load(mock, parameters):
    SETTINGS['inbox'] = parameters.get('inbox', '/nonexistent')
    base.load(mock, parameters)
    mockobject.objects['/org/bluez/obex'].AddMethods(base.CLIENT_IFACE, [
        ('CreateSession', 'sa{sv}', 'o', CreateSession),
        ('RemoveSession', 'o', '', base.RemoveSession),
    ])


def CreateSession(self, destination, args):
    if str(args.get('Target', '')).lower() != 'opp':
        return base.CreateSession(self, destination, args)
    session_id = 0
    while f'/org/bluez/obex/client/session{session_id}' in mockobject.objects:
        session_id += 1
    path = f'/org/bluez/obex/client/session{session_id}'
    properties = {
        'Destination': dbus.String(destination, variant_level=1),
        'Target': dbus.String('opp', variant_level=1),
    }
    self.AddObject(path, base.SESSION_IFACE, properties, [])
    mockobject.objects[path].AddMethods(PUSH_IFACE, [('SendFile', 's', 'oa{sv}', SendFile)])
    mockobject.objects['/'].EmitSignal(OBJECT_MANAGER_IFACE, 'InterfacesAdded', 'oa{sa{sv}}',
                                       [dbus.ObjectPath(path), {base.SESSION_IFACE: properties}])
    return dbus.ObjectPath(path)


def SendFile(self, source):
    transfer_id = 0
    while f'{self.path}/transfer{transfer_id}' in mockobject.objects:
        transfer_id += 1
    path = f'{self.path}/transfer{transfer_id}'
    name = Path(source).name
    props = {
        'Status': dbus.String('queued', variant_level=1),
        'Session': dbus.ObjectPath(self.path, variant_level=1),
        'Name': dbus.String(name, variant_level=1),
        'Filename': dbus.String(source, variant_level=1),
        'Transferred': dbus.UInt64(0, variant_level=1),
    }
    self.AddObject(path, base.TRANSFER_IFACE, props, [('Cancel', '', '', '')])
    transfer = mockobject.objects[path]

    failing = name.startswith('fail')
    if not failing:
        inbox = Path(SETTINGS['inbox'])
        shutil.copyfile(source, inbox / name)
        destination = self.props[base.SESSION_IFACE]['Destination']
        (inbox / (name + '.to')).write_text(str(destination))

    def step(status):
        transfer.props[base.TRANSFER_IFACE]['Status'] = status
        transfer.EmitSignal(dbus.PROPERTIES_IFACE, 'PropertiesChanged', 'sa{sv}as', [
            base.TRANSFER_IFACE, {'Status': dbus.String(status, variant_level=1)}, []])
        return False

    GLib.timeout_add(20, step, 'active')
    GLib.timeout_add(60, step, 'error' if failing else 'complete')
    return (dbus.ObjectPath(path), props)
