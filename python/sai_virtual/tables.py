"""The rows of the chip's tables: a class for each table, with a field for each column of swsdk_show()."""
import typing

Names = tuple[str, ...]  # none where the chip shows "-"
Numbers = tuple[int, ...]
Ports = frozenset[int]
Place = int | str  # a port's number, "trunk 5" or "virtual port 7"


class Attribute(typing.NamedTuple):
    port: int
    enabled: bool
    link: str
    auto: bool
    speed: int
    duplex: str
    interface: int
    loopback: str | None
    pause: Names
    frame_max: int
    gap: int


class Clock(typing.NamedTuple):
    nanoseconds: int


class Control(typing.NamedTuple):
    control: str
    value: str


class Counter(typing.NamedTuple):
    port: int
    counter: str
    value: int


class Drop(typing.NamedTuple):
    port: int
    reason: str
    frames: int


class EgressObject(typing.NamedTuple):
    egress: int
    interface: int
    mac: str
    vlan: int | None
    port: Place
    used_by: int


class FieldEntry(typing.NamedTuple):
    group: int
    stage: str
    rank: int | str
    enabled: bool
    entry: int | None
    priority: int | str | None
    installed: str | None
    hits: int | None
    actions: str | None
    matches: str | None


class Filter(typing.NamedTuple):
    port: int
    checks_vlans_at: Names
    floods_kept_from_the_cpu: Names


class Forwarding(typing.NamedTuple):
    port: int
    unknown_addresses: Names
    untagged_vlan: int
    by_protocol: Names
    goes_to: Ports


class Host(typing.NamedTuple):
    host: str
    vrf: int
    by: str
    mac: str
    port: Place
    flags: Names
    hit: Names


class Interface(typing.NamedTuple):
    interface: int
    vrf: int
    mac: str
    vlan: str | None
    ttl: int
    flags: Names


class MulticastRoute(typing.NamedTuple):
    address: str
    source: str
    vlan: int
    vrf: int
    group: int
    interface: int
    flags: Names


class L2CacheEntry(typing.NamedTuple):
    index_: int
    mac: str
    mask: str
    flags: Names


class LearnLimit(typing.NamedTuple):
    learned: int
    of_at_most: int | None
    in_: str
    then: Names
    heeded: bool


class Led(typing.NamedTuple):
    processor: int
    program: str | None
    auto: bool
    state: str


class Mac(typing.NamedTuple):
    vlan: int
    mac: str
    at: str
    kind: Names
    hit: Names


class MacVlan(typing.NamedTuple):
    mac: str
    vlan: int
    priority: int


class Meter(typing.NamedTuple):
    meter: str
    number: int
    left: int
    at: int


class Mirror(typing.NamedTuple):
    session: int
    to_port: Place
    mode: str
    sources: Ports
    ingress: Ports
    egress: Ports


class MulticastGroup(typing.NamedTuple):
    group: int
    type: str
    ports: Ports
    encapsulation: str | None


class NetworkInterface(typing.NamedTuple):
    id: int
    name: str
    mac: str
    type: int
    flags: int


class Phy(typing.NamedTuple):
    phy: int
    device: int | None
    register_or_control: str
    value: int


class Policer(typing.NamedTuple):
    policer: int
    mode: int
    kbit_s: int
    burst: int
    peak_kbit_s: int
    peak_burst: int
    flags: int
    attached: int


class Port(typing.NamedTuple):
    port: int
    kind: str
    state: str | None
    speed: int | None
    duplex: str | None
    tagged_in: Numbers
    untagged_in: Numbers


class Rate(typing.NamedTuple):
    port: int
    in_: str | None
    out: str | None
    broadcast: int | None
    multicast: int | None
    unknown: int | None


class Route(typing.NamedTuple):
    subnet: str
    vrf: int
    by: str
    next_hop: str
    mac: str
    port: Place
    flags: Names
    hit: Names


class SpanningTree(typing.NamedTuple):
    group: str
    vlans: Numbers
    disabled: Ports
    blocking: Ports
    listening: Ports
    learning: Ports
    forwarding: Ports


class SubnetVlan(typing.NamedTuple):
    subnet: str
    vlan: int
    priority: int


class Temperature(typing.NamedTuple):
    sensor: int
    current: float
    peak: float


class Translation(typing.NamedTuple):
    direction: str
    port: int
    vlan: str
    becomes: str | None
    priority: int


class Trunk(typing.NamedTuple):
    trunk: int
    picks_by: str | None
    members: Numbers


class Vlan(typing.NamedTuple):
    vlan: int
    tagged: Ports
    untagged: Ports
    flags: Names


class VirtualPort(typing.NamedTuple):
    virtual_port: int
    port: Place
    match: str | None
    becomes: str | None
    in_vlans: Numbers
    network_groups: Numbers
    flags: Names


ROWS: dict[str, typing.Any] = {
    "attribute": Attribute, "clock": Clock, "control": Control, "counters": Counter, "drops": Drop,
    "egress": EgressObject, "field": FieldEntry, "filter": Filter, "forwarding": Forwarding, "host": Host,
    "interface": Interface, "ipmc": MulticastRoute, "l2cache": L2CacheEntry, "learnlimit": LearnLimit, "led": Led,
    "mac": Mac, "macvlan": MacVlan, "meter": Meter, "mirror": Mirror, "multicast": MulticastGroup,
    "netif": NetworkInterface, "phy": Phy, "policer": Policer, "port": Port, "rate": Rate, "route": Route,
    "stp": SpanningTree, "subnetvlan": SubnetVlan, "temperature": Temperature, "translation": Translation,
    "trunk": Trunk, "vlan": Vlan, "vport": VirtualPort,
}
