# SPDX-License-Identifier: Apache-2.0
"""Prepares a public header for Doxygen, which reads what this prints; lines stay where they are.

- What the header is for, in its first lines, becomes the documentation of the file.
- Its declarations go into the topic that TOPICS names for it.
- What all types have alike is said here, once, instead of at each of them (see `Header.goes_without_saying`). Anything else
  without a comment of its own stays undocumented, and fails ./dev docs.
- An enumerator tells its text on the wire, from the table that coding uses.
- What is no part of the interface (tables of enumerations, marks for coding, what the compiler makes by itself) is left out.
"""

import re
import sys

# What a reader looks for (docs/site/topics.dox): the headers that belong there, below Orvane/, without ".h".
TOPICS = {
    "operations": "Common/All Common/AnswerOnce Common/Awaiting Common/Future Common/Operation Common/Relay Common/Request "
                  "Common/Retrying Common/Task Common/Timers Platform/SetOf Platform/UniqueFunction",
    "errors": "Common/NetworkError Platform/Error Platform/Fatal Platform/Result Platform/SourceLocation Platform/TypeIdentity",
    "main_queue": "Common/MainQueue",
    "asio": "Asio",
    "": "Orvane Runtime Testing",  # have no declarations of their own
    "users": "Models/User Services/User/UserService",
    "invitations": "Models/Invitation Services/Invitation/InvitationService",
    "enrolment": "Models/EULAStatus Services/Activation/ActivationService Services/EULA/EULAService",
    "devices": "Models/Device Core/DeviceNamingService Services/Device/DeviceService "
               "Services/PushNotification/PushNotificationService",
    "subscriptions": "Models/Subscription Services/Subscription/SubscriptionService",
    "named_drivers": "Models/NamedDriver Services/NamedDriver/NamedDriverService",
    "driver_detection": "Models/DriverDetection",
    "trips": "Models/Trip Models/Event Models/LogbookWrapper Models/TransportMode Services/Trip/TripService",
    "locations": "Models/Location Models/Polyline Platform/CLLocation Services/Location/LocationService",
    "vehicles": "Models/Vehicle Services/Vehicle/VehicleService",
    "driving_summaries": "Models/DrivingSummary Services/DrivingSummary/DrivingSummaryService",
    "driving_alerts": "Services/DrivingAlert/DrivingAlertService",
    "scoring": "Models/Scoring Services/Scoring/ScoringService Services/Scoring/ScoringAggregateService",
    "leaderboards": "Models/Leaderboard Services/Leaderboard/LeaderboardService",
    "discounts": "Models/Discount Services/Discount/DiscountService Services/Discount/DiscountMetadataService",
    "rewards": "Models/RewardToken Services/Rewards/RewardsService",
    "firmware": "Common/FirmwareHost Common/Version Services/WedgeFirmware/WedgeFirmwareService",
    "content": "Models/Content Services/Content/ContentService",
    "services": "Core/SerializableService",
    "times": "Common/CurrentDate Platform/Date Platform/DateComponents Platform/DateRange Platform/DeviceSettings "
             "Platform/TimeZone",
    "values": "Platform/ClosedRange Platform/Enumeration Platform/Hash Platform/Indirect Platform/OneOf Platform/SharedText "
              "Platform/Printing Platform/TextStream Platform/URL",
    "coding": "Coding/CodableTypes Coding/Coding Coding/DecodingError Coding/EnumerationCoding",
    "foundation": "Common/Container Common/Downloader Common/Identity Common/Logger Common/RequestManager Common/Resolvers "
                  "Common/Stores Core/OrvaneDetails Core/Resolvers Core/UserIdentifier",
    "runtime": "Runtime/Runtime Runtime/ConfigurationError Runtime/EndpointResolvers Runtime/FileDeviceIdentifier "
               "Runtime/IntervalTimeMonitor Runtime/Loggers Runtime/TextOrNothing",
    "transport": "Runtime/CurlDownloader Runtime/CurlRequestManager Runtime/DownloadError Runtime/Exchange "
                 "Runtime/TransportError",
    "tokens": "Runtime/SelfSignedTokenResolver Runtime/TokenResolvers",
    "testing": "Testing/Device Testing/FixedResolvers Testing/MemoryStores Testing/MovableTimers Testing/RecordingLogger "
               "Testing/ScopedFoundation Testing/Script Testing/ScriptedDownloader Testing/ScriptedRequestManager "
               "GoogleTest",
    "version": "Version",
}

TOPIC_OF = {header: topic for topic, headers in TOPICS.items() for header in headers.split()}

COMMENT_OR_TEXT = re.compile(r"//[^\n]*|/\*.*?\*/|\"(?:\\.|[^\"\\\n])*\"|'(?:\\.|[^'\\\n])'", re.DOTALL)
TYPE = re.compile(r"\b(enum class|enum|class|struct|union)\b(?:\s+(?:\[\[[^\]]*\]\]|ORVANE_\w+))*\s+([\w:]+)")
NAME = re.compile(r"(operator\s*(?:\(\)|[^\s(\w]+|\w+)|[~\w]+)\s*\(")
TABLE = re.compile(r"struct EnumerationTable<([\w:]+)> \{.*?\n\};", re.DOTALL)
ROW = re.compile(r'\{(?:[\w:]+::)?(\w+),\s*"((?:[^"\\]|\\.)*)"\}')
LEFT_OUT = re.compile(
    r"(?:/// [^\n]*\n)*template <>\nstruct EnumerationTable<.*?\n\};\n"
    r"|template <>\ninline constexpr bool hasCoding<[^;]*;\n"
    r"|template <[^\n]*>\nstruct std::tuple_\w+<.*?\};?\n"
    r"|(?:/// [^\n]*\n)*template <>\nclass testing::internal::.*?\n\};\n"
    r"|^struct std::hash<T> \{.*?\n\};\n"
    r"|^template <[^\n]*>\n[\w<>]+ detail::\w+\(.*?^\}\n"
    r"|^#(?:pragma (?:push|pop)_macro|undef)[^\n]*\n",
    re.DOTALL | re.MULTILINE)


def without(text, pattern):
    """The text with spaces for what the pattern finds, lines where they were."""
    return pattern.sub(lambda match: re.sub(r"[^\n]", " ", match[0]), text)


class Declaration:
    """A declaration of a public header: where it begins, and its text up to its body or its end."""

    def __init__(self, line, text, scope, is_documented):
        self.line = line
        self.text = " ".join(text.split())
        self.scope = scope
        self.is_documented = is_documented
        bare = re.sub(r"^(?:template <.*?>\s*(?:requires\s*\(.*?\)\s*)?)+", "", self.text)
        name = NAME.search(re.sub(r"\[\[.*?\]\]|\brequires\s*\([^)]*\)|\bexplicit\([^)]*\)|\bnoexcept\([^)]*\)", "", bare))
        self.name = name[1].replace(" ", "") if name else None


    def belongs_to_topic(self):
        """Neither announced alone, nor a member that is defined behind its class."""
        if self.scope[0] != "namespace" or re.match(r"(?:class|struct) \w+;", self.text):
            return False
        if self.name and re.search(rf"\w::{re.escape(self.name)}\(", self.text):
            return False
        return re.match(r"(?:inline |constexpr )*\w+ \w+::\w+(?:[ {=;]|$)", self.text) is None


class Header:
    def __init__(self, path):
        self.path = path
        self.text = path.read_text(encoding="utf-8")
        relative = str(path).split("Orvane/", 1)[1][:-2]
        self.topic = TOPIC_OF.get(relative)
        if self.topic is None:
            sys.exit(f"{path}: error: TOPICS in tools/docs/header.py names no topic for it")

    def prepared(self):
        text = self.with_wire_texts(self.text)
        text = without(text, LEFT_OUT)
        self.lines = text.split("\n")
        self.code = without(text, COMMENT_OR_TEXT).split("\n")
        before = None
        for declaration in list(self.declarations()):
            if not declaration.is_documented:
                self.document(declaration, before)
            if declaration.belongs_to_topic():
                self.put_before(declaration, f"/** @ingroup {self.topic} */")
            if declaration.name:
                before = declaration
        self.describe_file()
        return "\n".join(self.lines)

    @staticmethod
    def with_wire_texts(text):
        for table in TABLE.finditer(text):
            texts = dict(ROW.findall(table[0]))
            name = table[1].split("::")[-1]
            enumeration = re.search(r"enum class " + name + r"\b[^{]*\{.*?\}", text, re.DOTALL)
            if enumeration is None:
                continue
            lines = enumeration[0].split("{", 1)
            body = re.sub(
                r"(?m)(?P<before>(?:^|,)\s*)(?P<name>\w+)(?P<rest>(?:\s*=\s*\w+)?)(?P<own>,?[ ]*///<)?",
                lambda match: Header.enumerator(match, texts), lines[1])
            text = text[:enumeration.start()] + lines[0] + "{" + body + text[enumeration.end():]
        return text

    @staticmethod
    def enumerator(match, texts):
        wire = texts.get(match["name"])
        if wire is None:
            return match[0]
        said = f'"{wire}" on the wire.' if wire else "No text on the wire: what is not known is read as this."
        if match["own"]:
            return f'{match["before"]}{match["name"]}{match["rest"]}{match["own"]} {said}'
        return f'{match["before"]}/** {said} */ {match["name"]}{match["rest"]}'

    def declarations(self):
        """Public declarations in namespaces and types, in order; what is private goes."""
        scopes = []  # [kind, name, is public]
        begin = None
        for number, line in enumerate(self.code):
            stripped = line.strip()
            inside = scopes[-1] if scopes else None
            private = [scope for scope in scopes if scope[0] == "type" and not scope[2]]
            if private and not (private == [inside] and stripped.startswith(("}", "public:"))):
                self.lines[number] = ""
            if begin is None and stripped and inside and inside[0] in ("namespace", "type"):
                if label := re.fullmatch(r"(public|protected|private):", stripped):
                    inside[2] = label[1] != "private"
                    continue
                if stripped[0] not in "}#":
                    begin = number
            for column, character in enumerate(line):
                if character == "{":
                    head = " ".join(self.code[begin:number] + [line[:column]]) if begin is not None else line[:column]
                    scopes.append(self.scope_of(head, scopes))
                    if begin is not None:
                        is_public = all(scope[2] for scope in scopes[:-1])
                        if is_public and scopes[-1][0] in ("type", "enum", "other"):
                            yield self.declaration(begin, number, head, scopes[-2] if len(scopes) > 1 else None)
                        begin = None
                elif character == "}":
                    if scopes:
                        scopes.pop()
                elif character == ";":
                    inside = scopes[-1] if scopes else None
                    if begin is not None and inside and inside[0] in ("namespace", "type"):
                        if all(scope[2] for scope in scopes):
                            yield self.declaration(begin, number, " ".join(self.code[begin:number] + [line[:column + 1]]), inside)
                        begin = None

    @staticmethod
    def scope_of(head, scopes):
        if re.search(r"\bnamespace\b", head):
            name = re.search(r"namespace\s+([\w:]*)", head)[1]
            return ["namespace", name, "detail" not in name]
        bare = head
        while (shorter := re.sub(r"<[^<>]*>", "", bare)) != bare:
            bare = shorter
        found = list(TYPE.finditer(bare))
        if found and "(" not in re.sub(r"alignas\([^)]*\)|requires\s*\(.*?\)\s|requires.*", "", bare.split(" : ")[0]):
            kind, name = found[-1][1], found[-1][2]
            if kind.startswith("enum"):
                return ["enum", name, True]
            return ["type", name, kind == "struct"]
        return ["other", "", False]

    def declaration(self, begin, last, text, scope):
        above = self.lines[begin - 1].strip() if begin > 0 else ""
        behind = any("///<" in line for line in self.lines[begin:last + 1])
        return Declaration(begin, text, scope, above.startswith(("///", "*/")) or behind or "/**" in self.lines[begin])

    def document(self, declaration, before):
        if self.is_made_by_itself(declaration):
            self.lines[declaration.line] = ""
        elif said := self.goes_without_saying(declaration, before):
            self.put_before(declaration, f"/** {said} */")

    def put_before(self, declaration, text):
        line = self.lines[declaration.line]
        indent = line[:len(line) - len(line.lstrip())]
        self.lines[declaration.line] = f"{indent}{text} {line.lstrip()}"

    def is_made_by_itself(self, declaration):
        """Construction, copying and destruction that every type has."""
        text, name, scope = declaration.text, declaration.name, declaration.scope[1]
        line = self.lines[declaration.line].strip()
        if name is None or line.count("{") != line.count("}") or line[-1] not in ";}":
            return False
        return name in ("~" + scope, "operator=") or (name == scope and text.endswith("= default;"))

    @staticmethod
    def goes_without_saying(declaration, before):
        text, name, scope = declaration.text, declaration.name, declaration.scope[1]
        if name == "operator==" and (text.endswith("= default;") or "other) const noexcept;" in text):
            return "True when all members are equal."
        if name == "operator<=>" and text.endswith("= default;"):
            return "Compares member by member, in their order."
        if name == "hashValue":
            return "What `std::hash` answers: equal values have equal ones."
        if name == "message" and "message() const" in text:
            return "What went wrong, in one line, for a log or a developer; not localised."
        if name == scope and re.search(rf"\(const {scope}&[^)]*\) = delete", text):
            return "Can't be copied."
        if "RequestHandle" in text and re.search(r"Completion<.*> \w+\) const;", text) and before and before.name == name:
            return "The same, started with a handler: see `Operation::start`."
        if before and before.name == name and before.scope[1] == scope and name is not None:
            return "As the one above."
        return None

    def describe_file(self):
        """The lines below the licence's say what the header is for."""
        if not self.lines[0].startswith("// SPDX"):
            return
        last = 0
        while self.lines[last + 1].startswith("//"):
            last += 1
        if last == 0:
            return
        self.lines[0] = "/** @file"
        for number in range(1, last + 1):
            self.lines[number] = self.lines[number].removeprefix("//")
        self.lines[last] += " */"
