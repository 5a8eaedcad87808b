'''obexd mock with Object Push for the tests of the Bluetooth transport: python-dbusmock's
bluez5-obex template, whose CreateSession also takes the target "opp". Such a session's
ObjectPush1.SendFile copies the file into the folder of the parameter "inbox" (the session's
destination into "<name>.to" beside it) and reports the transfer active, then complete. A file
whose name begins with "fail" is not copied and its transfer ends in error.'''

import importlib
import shutil
from pathlib import Path

import dbus
from gi.repository import GLib

from dbusmock import mockobject

base = importlib.import_module('dbusmock.templates.bluez5-obex')
BUS_NAME = base.BUS_NAME
MAIN_OBJ = base.MAIN_OBJ
SYSTEM_BUS = False
IS_OBJECT_MANAGER = True
SETTINGS = {}


def load(mock, parameters):
    SETTINGS['inbox'] = Path(parameters['inbox'])
    base.load(mock, parameters)
    mockobject.objects['/org/bluez/obex'].AddMethods(base.CLIENT_IFACE, [
        ('CreateSession', 'sa{sv}', 'o', CreateSession),
        ('RemoveSession', 'o', '', base.RemoveSession)])


def CreateSession(self, destination, args):
    if str(args.get('Target', '')).lower() != 'opp':
        return base.CreateSession(self, destination, args)
    number = 0
    while f'/org/bluez/obex/client/session{number}' in mockobject.objects:
        number += 1
    path = f'/org/bluez/obex/client/session{number}'
    self.AddObject(path, base.SESSION_IFACE, {'Destination': dbus.String(destination)}, [])
    mockobject.objects[path].AddMethods('org.bluez.obex.ObjectPush1',
                                        [('SendFile', 's', 'oa{sv}', SendFile)])
    return dbus.ObjectPath(path)


def SendFile(self, source):
    path = self.path + '/transfer0'
    name = Path(source).name
    props = {'Status': dbus.String('queued'), 'Name': dbus.String(name),
             'Filename': dbus.String(source), 'Session': dbus.ObjectPath(self.path)}
    self.AddObject(path, base.TRANSFER_IFACE, props, [('Cancel', '', '', '')])
    failing = name.startswith('fail')
    if not failing:
        shutil.copyfile(source, SETTINGS['inbox'] / name)
        destination = self.props[base.SESSION_IFACE]['Destination']
        (SETTINGS['inbox'] / (name + '.to')).write_text(str(destination))

    def step(status):
        mockobject.objects[path].EmitSignal(dbus.PROPERTIES_IFACE, 'PropertiesChanged', 'sa{sv}as', [
            base.TRANSFER_IFACE, {'Status': dbus.String(status, variant_level=1)}, []])
        return False

    GLib.timeout_add(20, step, 'active')
    GLib.timeout_add(60, step, 'error' if failing else 'complete')
    return (dbus.ObjectPath(path), props)
