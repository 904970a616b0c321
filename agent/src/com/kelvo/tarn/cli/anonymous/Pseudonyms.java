package com.kelvo.tarn.cli.anonymous;

import java.math.BigInteger;
import java.nio.charset.StandardCharsets;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.HashSet;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import java.util.Set;
import java.util.function.UnaryOperator;
import java.util.regex.Matcher;
import java.util.regex.Pattern;
import java.util.stream.Collectors;
import java.util.stream.Stream;

/** What texts of each {@link Kind} become in one description. Whatever has not the form of its kind is replaced. */
final class Pseudonyms {
    private static final Map<String, Set<String>> LISTS = Tables.wordLists();

    private static final Pattern TIME = Pattern.compile("\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\dZ");
    private static final Pattern SMALL_NUMBER = Pattern.compile("\\d{1,5}");
    private static final Pattern NUMBER_ALONE = Pattern.compile("\\d+");
    private static final Pattern NUMBER = Pattern.compile("\\d{1,12}");
    private static final Pattern WWN = Pattern.compile("[0-9A-Fa-f]{16}");
    private static final Pattern WORD = Pattern.compile("[A-Za-z0-9]+");
    /** Names that number and do not name. */
    private static final Pattern ADDRESS =
        Pattern.compile("(?:c\\d{1,5})?(?:t\\d{1,5})?(?:d\\d{1,5})?(?:[sp]\\d{1,2})?");
    private static final Pattern SLICE = Pattern.compile("|[a-z]|[a-z]?\\d{1,2}");
    private static final Pattern SLICE_AT_END = Pattern.compile("[sp]\\d{1,2}$");
    private static final Pattern FIBRE_CHANNEL_DISK =
        Pattern.compile("(c\\d{1,5}t)([0-9A-Fa-f]{16}|[0-9A-Fa-f]{32})(d\\d{1,5})(|[sp]\\d{1,2})");
    private static final Pattern NUMBERED = Pattern.compile("([^0-9]*)(\\d{0,5})(|[a-z])");
    private static final Pattern NODE = Pattern.compile("([^@:]*)(@[^:]*)?(:.*)?", Pattern.DOTALL);
    private static final Pattern UNIT_NAME = Pattern.compile("([wgt]?)([0-9A-Fa-f]{16}|[0-9A-Fa-f]{32})");
    private static final Pattern UNIT_NUMBER = Pattern.compile("[0-9a-f]{1,8}|[0-9a-f]{4}0{12}");
    private static final Pattern BUS_NUMBER = Pattern.compile("(?:pci|pciex|pciclass)?\\d[0-9a-f]{0,3}");
    private static final Pattern MINOR_NODE = Pattern.compile(":[a-z]{1,2}(,raw)?");
    private static final Pattern LABEL = Pattern.compile("(.*)( cyl \\d+ alt \\d+ hd \\d+ sec \\d+)", Pattern.DOTALL);
    private static final Pattern CRYPT_SCHEME = Pattern.compile("\\$[0-9a-z]{1,3}\\$");
    private static final Pattern CRYPT_CHARACTER = Pattern.compile("[^$]");
    private static final String CRYPT_CHARACTERS = "./0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";

    private static final int LONGEST_FILE_NAME = 64;
    private static final int SHORTEST_HOST_WORD = 3;
    private static final int SHORTEST_SERIAL_WORD = 5;

    private final Permutation permutation;
    private final Words words;
    private final Identifiers identifiers;
    private final Pages pages;

    // What is known of the description from a first reading.
    private final Set<String> disks = new HashSet<>();
    private final Set<String> slices = new HashSet<>(Set.of("s0", "s1", "s2", "s3", "s4", "s5", "s6", "s7"));
    private final Set<String> secrets = new HashSet<>();
    private int longestSlice = 2;
    private String hostName;
    private String recordedAt;

    Pseudonyms(Permutation permutation, Words words) {
        this.permutation = permutation;
        this.words = words;
        identifiers = new Identifiers(permutation);
        pages = new Pages(words, identifiers, text -> product(text));
    }

    /** {@return a name for the file of the result, which tells nothing that the result does not} */
    String fileName() {
        String name = hostName == null ? "host" : of(Kind.HOST, hostName).replaceAll("[^A-Za-z0-9._-]|^\\.", "_");
        return name.substring(0, Math.min(name.length(), LONGEST_FILE_NAME))
            + (recordedAt == null ? "" : "-" + recordedAt.replaceAll("[-:]", ""));
    }

    /** Takes in what texts elsewhere refer to. All are told before the first is replaced. */
    String learn(Kind kind, String text) {
        switch (kind) {
        case TIME:
            recordedAt = TIME.matcher(text).matches() ? text : null;
            break;
        case DISK:
            disks.add(text);
            break;
        case SLICE:
            slices.add(text);
            longestSlice = Math.max(longestSlice, text.length());
            break;
        case HOST:
            hostName = text.isEmpty() ? hostName : text;
            learnSecrets(text, SHORTEST_HOST_WORD);
            break;
        case SERIAL:
            learnSecrets(text, SHORTEST_SERIAL_WORD);
            break;
        default:
            break;
        }
        return text;
    }

    private void learnSecrets(String text, int shortest) {
        WORD.matcher(text).results().map(found -> found.group()).filter(word -> word.length() >= shortest)
            .forEach(word -> secrets.add(word.toLowerCase(Locale.ROOT)));
    }

    /** {@return what stands for the text, of the same form and length} */
    String of(Kind kind, String text) {
        switch (kind) {
        case NUMBER:
            return staying(NUMBER.matcher(text).matches(), text);
        case CONSTANT:
            return staying(list("constant").contains(text) || SMALL_NUMBER.matcher(text).matches(), text);
        case CALL:
            return staying(isCall(text), text);
        case TIME:
            return staying(TIME.matcher(text).matches(), text);
        case PRODUCT:
            return product(text);
        case USER:
            return words.whole(list("user"), text);
        case PASSWORD:
            return password(text);
        case WWN:
            return WWN.matcher(text).matches() ? identifiers.worldWide(text) : words.each(text);
        case LABEL:
            return label(text);
        case DISK:
            return disk(text);
        case SLICE:
            return slice(text);
        case ENTRY:
            return entry(text);
        case DEVICE:
            return device(text);
        case DRIVER:
            return driver(text);
        case INSTANCE:
            return Stream.of(text.split("(?<=[.,:])|(?=[.,:])")).map(this::instance).collect(Collectors.joining());
        case ADAPTER:
            return eachPart('-', text, this::instance);
        case MOUNT_LINE:
            return mountLine(text);
        case MOUNT_POINT:
            return path(text);
        case SPECIAL:
            return special(text);
        case FILE_SYSTEM_TYPE:
            return words.whole(list("file-system-type"), text);
        case OPTIONS:
            return eachPart(',', text, this::option);
        default:
            return kind.isPage() ? pages.of(kind, text) : words.each(text);
        }
    }

    private static Set<String> list(String name) {
        return LISTS.get(name);
    }

    private String staying(boolean isHarmless, String text) {
        return isHarmless ? text : words.each(text);
    }

    private static String eachPart(char between, String text, UnaryOperator<String> replaced) {
        StringBuilder parts = new StringBuilder(text.length());
        int start = 0;
        for (int end = text.indexOf(between); end >= 0; end = text.indexOf(between, start)) {
            parts.append(replaced.apply(text.substring(start, end))).append(between);
            start = end + 1;
        }
        return parts.append(replaced.apply(text.substring(start))).toString();
    }

    private static boolean isCall(String text) {
        String call = text.split(" ", 2)[0];
        String mode = text.substring(call.length()).stripLeading();
        return list("call").contains(text) || Member.DESCRIPTION.member("disks").member("scsi").member(text) != null
            || list("opened").contains(call) && (mode.isEmpty() || list("mode").contains(mode));
    }

    private String product(String text) {
        return WORD.matcher(text).replaceAll(
            found -> staying(!secrets.contains(found.group().toLowerCase(Locale.ROOT)), found.group()));
    }

    /** Nothing leads back to a hash: its characters follow from it, but it does not follow from them. */
    private String password(String hash) {
        if (hash.isEmpty() || list("password").contains(hash)) {
            return hash;
        }
        Matcher scheme = CRYPT_SCHEME.matcher(hash);
        int start = scheme.lookingAt() ? scheme.end() : 0;
        BigInteger number = new BigInteger(1, hash.getBytes(StandardCharsets.UTF_8));
        int[] place = {0};
        return hash.substring(0, start) + CRYPT_CHARACTER.matcher(hash.substring(start)).replaceAll(
            found -> String.valueOf(CRYPT_CHARACTERS.charAt(
                permutation.digest("password " + place[0]++, 0, number)[0] & CRYPT_CHARACTERS.length() - 1)));
    }

    private String label(String text) {
        Matcher label = LABEL.matcher(text);
        return label.matches() ? words.eachBut(list("label"), label.group(1)) + label.group(2) : words.each(text);
    }

    private String disk(String name) {
        Matcher byNames = FIBRE_CHANNEL_DISK.matcher(name);
        if (byNames.matches()) {
            String digits = byNames.group(2);
            String replaced = identifiers.naa(digits);
            // Disks are named in capitals, also those whose digits do not show it.
            boolean hasNoLetters = NUMBER_ALONE.matcher(digits).matches();
            return byNames.group(1) + (hasNoLetters ? replaced.toUpperCase(Locale.ROOT) : replaced)
                + byNames.group(3) + byNames.group(4);
        }
        Matcher pseudo = NUMBERED.matcher(name);
        boolean stays = ADDRESS.matcher(name).matches()
            || pseudo.matches() && !pseudo.group(2).isEmpty() && list("pseudo").contains(pseudo.group(1));
        return staying(stays, name);
    }

    private String slice(String name) {
        return staying(SLICE.matcher(name).matches(), name);
    }

    /** A disk with a slice: one that the description has, or what looks like it. */
    private String entry(String name) {
        for (int end = name.length(); end > 0 && end >= name.length() - longestSlice; end--) {
            if (slices.contains(name.substring(end)) && disks.contains(name.substring(0, end))) {
                return disk(name.substring(0, end)) + slice(name.substring(end));
            }
        }
        Matcher slice = SLICE_AT_END.matcher(name);
        return slice.find() && slice.start() > 0 ? disk(name.substring(0, slice.start())) + slice.group() : disk(name);
    }

    /** A path in "/dev" or of the device tree, or an entry of a directory of disks. */
    private String device(String text) {
        String[] parts = text.split("/", -1);
        if (parts.length == 1) {
            return entry(text);
        }
        boolean isNode = false;
        List<String> replaced = new ArrayList<>();
        for (int i = 0; i < parts.length; i++) {
            String part = parts[i];
            isNode = isNode || part.contains("@");
            String above = i > 0 ? parts[i - 1] : "";
            boolean isDisk = i == parts.length - 1 && List.of("dsk", "rdsk", "cfg").contains(above);
            replaced.add(isNode ? node(part) : isDisk ? entry(part)
                         : list("driver").contains(part) ? part : words.whole(list("path"), part));
            isNode = isNode || part.equals("devices");
        }
        return String.join("/", replaced);
    }

    /** A node of the device tree: its driver, its address on its bus, and which of its minor nodes. */
    private String node(String part) {
        Matcher node = NODE.matcher(part);
        if (!node.matches()) {
            return words.each(part);
        }
        String name = eachPart(',', node.group(1), word -> BUS_NUMBER.matcher(word).matches() ? word : driver(word));
        String address = node.group(2) == null ? "" : "@" + eachPart(',', node.group(2).substring(1), this::address);
        String minor = node.group(3) == null ? "" : node.group(3);
        return name + address + (MINOR_NODE.matcher(minor).matches() ? minor : words.eachBut(list("driver"), minor));
    }

    private String address(String part) {
        Matcher unit = UNIT_NAME.matcher(part);
        return UNIT_NUMBER.matcher(part).matches() ? part
            : unit.matches() ? unit.group(1) + identifiers.naa(unit.group(2)) : words.each(part);
    }

    private String driver(String name) {
        return list("driver").contains(name) ? name : words.eachBut(list("driver"), name);
    }

    /** A driver and a number. */
    private String instance(String text) {
        Matcher unit = UNIT_NAME.matcher(text);
        if (unit.matches()) {
            return unit.group(1) + identifiers.naa(unit.group(2));
        }
        Matcher numbered = NUMBERED.matcher(text);
        return ADDRESS.matcher(text).matches() ? text
            : !numbered.matches() || numbered.group(2).isEmpty() ? driver(text)
            : driver(numbered.group(1)) + numbered.group(2) + numbered.group(3);
    }

    private String mountLine(String line) {
        List<Kind> fields = List.of(Kind.SPECIAL, Kind.MOUNT_POINT, Kind.FILE_SYSTEM_TYPE, Kind.OPTIONS, Kind.NUMBER);
        List<String> parts = Arrays.asList(line.split("\t", -1));
        List<String> replaced = new ArrayList<>();
        for (int i = 0; i < parts.size(); i++) {
            replaced.add(of(i < fields.size() ? fields.get(i) : Kind.UNKNOWN, parts.get(i)));
        }
        return String.join("\t", replaced);
    }

    /** Part by part: what is below another path stays below it. */
    private String path(String text) {
        return eachPart('/', text, part -> words.whole(list("path"), part));
    }

    private String special(String text) {
        int host = text.indexOf(':');
        return list("special").contains(text) ? text
            : text.startsWith("/dev/") || text.startsWith("/devices/") ? device(text)
            : host < 0 || text.startsWith("/") ? path(text)
            : words.each(text.substring(0, host)) + ":" + path(text.substring(host + 1));
    }

    private String option(String option) {
        int equals = option.indexOf('=');
        if (equals < 0) {
            return words.whole(list("option"), option);
        }
        String name = option.substring(0, equals);
        String value = option.substring(equals + 1);
        boolean stays = list("value").contains(value) || NUMBER.matcher(value).matches()
            || name.equals("dev") && value.matches("[0-9a-f]{1,16}");
        return words.whole(list("option"), name) + "=" + staying(stays, value);
    }
}
