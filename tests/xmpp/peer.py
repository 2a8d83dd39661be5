#!/usr/bin/python3
"""An independent XMPP client for the tests, written on slixmpp.

Usage: peer.py JID PASSWORD HOST PORT
Reads one JSON command per line on stdin and prints one JSON event per
line on stdout:
  {"cmd": "send", "to": JID, "body": TEXT, "extra": XML?, "id": ID?, "type": T?}
  {"cmd": "send_many", "to": JID, "count": N}      bodies "n<i>"
  {"cmd": "raw", "data": TEXT}                      anything, sent as it is
  {"cmd": "presence", "to": JID, "type": T, "status": TEXT?}
  {"cmd": "roster_remove", "jid": JID}
  {"cmd": "upload_send", "to": JID, "path": FILE, "upload": JID, "type": T?}
      uploads FILE (XEP-0363) and sends its URL as body and out-of-band data
  {"cmd": "fetch", "url": URL, "path": FILE}        GETs URL into FILE
  {"cmd": "vcard", "nick": NICK}                     publishes its vCard with NICK
  {"cmd": "make_room", "room": JID, "name": NAME, "members": [JID], "nick": NICK}
      creates a members-only persistent room, enters it as NICK, makes
      `members` members and invites them
  {"cmd": "quit"}
Events: ready, message (from, body, xml), presence (from, from_full, type, status, xml),
roster (jid, subscription), sent (count), uploaded (url), fetched (path, status),
vcard, room (room), disconnected.
"""
import asyncio
import json
import os
import sys
import urllib.request

import slixmpp
from slixmpp.xmlstream import ET
from slixmpp.xmlstream.handler import Callback
from slixmpp.xmlstream.matcher import MatchXPath


def emit(**event):
    sys.stdout.write(json.dumps(event) + "\n")
    sys.stdout.flush()


class Peer(slixmpp.ClientXMPP):
    def __init__(self, jid, password):
        super().__init__(jid, password)
        self.pending = b""
        # The tests answer subscription requests themselves.
        self.roster.auto_authorize = None
        self.roster.auto_subscribe = None
        self.add_event_handler("session_start", self.on_start)
        self.add_event_handler("message", self.on_message)
        # Markers and other messages without a body raise no "message" event.
        self.register_handler(Callback("bodyless", MatchXPath("{jabber:client}message"),
                                       self.on_bodyless))
        self.add_event_handler("disconnected", lambda _: emit(event="disconnected"))
        for kind in ("presence_subscribe", "presence_subscribed", "presence_unsubscribe",
                     "presence_unsubscribed"):
            self.add_event_handler(kind, self.on_presence)
        self.add_event_handler("roster_update", self.on_roster)
        self.add_event_handler("presence_available", self.on_presence)
        self.add_event_handler("presence_unavailable", self.on_presence)
        self.add_event_handler("presence_error", self.on_presence)

    async def on_start(self, _):
        await self.get_roster()
        self.send_presence()
        asyncio.get_event_loop().add_reader(sys.stdin.fileno(), self.on_command)
        emit(event="ready")

    def on_message(self, msg):
        emit(event="message", type=msg["type"], **{"from": str(msg["from"].bare)},
             body=msg["body"], xml=str(msg))

    def on_bodyless(self, msg):
        if not msg["body"]:
            self.on_message(msg)

    def on_presence(self, pres):
        emit(event="presence", type=pres["type"], status=pres["status"],
             from_full=str(pres["from"]), xml=str(pres), **{"from": str(pres["from"].bare)})

    def on_roster(self, iq):
        for jid, item in iq["roster"]["items"].items():
            emit(event="roster", jid=str(jid), subscription=item["subscription"])

    def on_command(self):
        # Unbuffered: every complete line that arrived is run now.
        data = os.read(sys.stdin.fileno(), 1 << 20)
        if not data:
            asyncio.get_event_loop().remove_reader(sys.stdin.fileno())
            self.disconnect()
            return
        self.pending += data
        *lines, self.pending = self.pending.split(b"\n")
        for line in lines:
            try:
                self.run(json.loads(line))
            except Exception as error:  # a bad command is reported, never fatal
                emit(event="error", text=str(error))

    def run(self, cmd):
        kind = cmd["cmd"]
        if kind == "send":
            msg = self.make_message(mto=cmd["to"], mbody=cmd.get("body"),
                                    mtype=cmd.get("type", "chat"))
            if cmd.get("id"):
                msg["id"] = cmd["id"]
            if cmd.get("extra"):
                msg.append(ET.fromstring(cmd["extra"]))
            msg.send()
        elif kind == "send_many":
            for i in range(cmd["count"]):
                self.send_message(mto=cmd["to"], mbody="n%d" % i, mtype="chat")
            emit(event="sent", count=cmd["count"])
        elif kind == "raw":
            self.send_raw(cmd["data"])
        elif kind == "presence":
            self.send_presence(pto=cmd["to"], ptype=cmd["type"], pstatus=cmd.get("status"))
        elif kind == "roster_remove":
            self.del_roster_item(cmd["jid"])
        elif kind == "upload_send":
            asyncio.ensure_future(self.upload_send(cmd))
        elif kind == "fetch":
            asyncio.ensure_future(self.fetch(cmd))
        elif kind == "vcard":
            asyncio.ensure_future(self.set_vcard(cmd))
        elif kind == "make_room":
            asyncio.ensure_future(self.make_room(cmd))
        elif kind == "quit":
            self.disconnect()

    async def set_vcard(self, cmd):
        try:
            iq = self.make_iq_set()
            card = ET.Element("{vcard-temp}vCard")
            ET.SubElement(card, "{vcard-temp}NICKNAME").text = cmd["nick"]
            ET.SubElement(card, "{vcard-temp}FN").text = cmd["nick"]
            iq.append(card)
            await iq.send()
            emit(event="vcard")
        except Exception as error:
            emit(event="error", text="vcard: %s" % error)

    async def make_room(self, cmd):
        room, muc = cmd["room"], "http://jabber.org/protocol/muc"
        try:
            # The room handles one client's stanzas in order: entered (and
            # made, we its owner) before the configuration arrives.
            self.send_raw("<presence to='%s/%s'><x xmlns='%s'><history maxstanzas='0'/></x>"
                          "</presence>" % (room, cmd["nick"], muc))
            fields = {"FORM_TYPE": muc + "#roomconfig", "muc#roomconfig_roomname": cmd["name"],
                      "muc#roomconfig_persistentroom": "1", "muc#roomconfig_membersonly": "1",
                      "muc#roomconfig_publicroom": "0", "muc#roomconfig_whois": "anyone",
                      "muc#roomconfig_enablearchiving": "1"}
            form = ET.Element("{jabber:x:data}x", type="submit")
            for var, value in fields.items():
                field = ET.SubElement(form, "{jabber:x:data}field", var=var)
                ET.SubElement(field, "{jabber:x:data}value").text = value
            iq = self.make_iq_set(ito=room)
            ET.SubElement(iq.xml, "{%s#owner}query" % muc).append(form)
            await iq.send()
            for member in cmd.get("members", []):
                iq = self.make_iq_set(ito=room)
                query = ET.SubElement(iq.xml, "{%s#admin}query" % muc)
                ET.SubElement(query, "{%s#admin}item" % muc, jid=member, affiliation="member")
                await iq.send()
                msg = self.make_message(mto=room)
                x = ET.SubElement(msg.xml, "{%s#user}x" % muc)
                ET.SubElement(x, "{%s#user}invite" % muc, to=member)
                msg.send()
            emit(event="room", room=room)
        except Exception as error:
            emit(event="error", text="make_room: %s" % error)


    async def upload_send(self, cmd):
        try:
            path = cmd["path"]
            size = os.path.getsize(path)
            ns = "urn:xmpp:http:upload:0"
            iq = self.make_iq_get(ito=cmd["upload"])
            iq.append(ET.Element("{%s}request" % ns, filename=os.path.basename(path),
                                 size=str(size), **{"content-type": "application/octet-stream"}))
            answer = await iq.send()
            slot = answer.xml.find("{%s}slot" % ns)
            put = slot.find("{%s}put" % ns).get("url")
            get = slot.find("{%s}get" % ns).get("url")
            headers = {h.get("name"): h.text for h in slot.find("{%s}put" % ns)}
            with open(path, "rb") as f:
                data = f.read()

            def put_file():
                request = urllib.request.Request(put, data=data, method="PUT", headers=headers)
                request.add_header("Content-Type", "application/octet-stream")
                with urllib.request.urlopen(request, timeout=60) as answer:
                    return answer.status

            await asyncio.get_event_loop().run_in_executor(None, put_file)
            msg = self.make_message(mto=cmd["to"], mbody=get, mtype=cmd.get("type", "chat"))
            oob = ET.Element("{jabber:x:oob}x")
            ET.SubElement(oob, "{jabber:x:oob}url").text = get
            msg.append(oob)
            msg.send()
            emit(event="uploaded", url=get)
        except Exception as error:
            emit(event="error", text="upload: %s" % error)

    async def fetch(self, cmd):
        def get_file():
            try:
                with urllib.request.urlopen(cmd["url"], timeout=60) as answer:
                    with open(cmd["path"], "wb") as f:
                        f.write(answer.read())
                    return answer.status
            except urllib.error.HTTPError as error:
                return error.code
        status = await asyncio.get_event_loop().run_in_executor(None, get_file)
        emit(event="fetched", path=cmd["path"], status=status)


def main():
    jid, password, host, port = sys.argv[1:5]
    peer = Peer(jid, password)
    peer.enable_plaintext = True
    peer.register_plugin("xep_0030")
    peer.register_plugin("xep_0199")
    peer.add_event_handler("disconnected", lambda _: peer.loop.stop())
    peer.connect((host, int(port)), use_ssl=False, force_starttls=False, disable_starttls=True)
    peer.loop.run_forever()


if __name__ == "__main__":
    main()
