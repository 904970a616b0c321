package com.kelvo.tarn.cli.map;

import com.kelvo.tarn.cli.output.Page;
import com.kelvo.tarn.cli.output.Resources;
import java.nio.charset.StandardCharsets;
import java.security.MessageDigest;
import java.security.NoSuchAlgorithmException;
import java.util.Base64;
import java.util.HashMap;
import java.util.List;
import java.util.Map;
import java.util.regex.Matcher;
import java.util.regex.Pattern;
import java.util.stream.Collectors;
import java.util.stream.Stream;

/**
 * What the pages have in common: each is one file that asks nothing of anywhere. The policy in its head lets a browser
 * run its own scripts, which it knows by their hashes, and nothing else, whatever a device is called.
 */
final class PageFrame {
    private static final Pattern PLACE = Pattern.compile("\\{\\{(\\w+)}}");

    private PageFrame() {
    }

    /**
     * The frame around the template with their parts, a style sheet and scripts, all by the names of their resources.
     *
     * @param parts by the names that the templates have for them; what is text is escaped already
     */
    static String of(String template, Map<String, String> parts, String style, String... scripts) {
        String rules = Palette.css() + resource("page.css") + (style == null ? "" : resource(style));
        List<String> texts = Stream.of(scripts).map(PageFrame::resource).collect(Collectors.toList());
        Map<String, String> all = new HashMap<>(parts);
        all.put("policy", "default-src 'none'; base-uri 'none'; form-action 'none'; style-src " + hash(rules)
                + "; script-src " + texts.stream().map(PageFrame::hash).collect(Collectors.joining(" ")));
        all.put("style", rules);
        all.put("scripts", texts.stream().map(text -> "<script>" + text + "</script>\n").collect(Collectors.joining()));
        return PLACE.matcher(resource("frame.html").replace("{{content}}", resource(template)))
            .replaceAll(found -> Matcher.quoteReplacement(all.get(found.group(1))));
    }

    /** Text between tags or in an attribute. */
    static String escaped(String text) {
        return Page.printable(text).replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;")
            .replace("\"", "&quot;");
    }

    private static String hash(String text) {
        try {
            byte[] digest = MessageDigest.getInstance("SHA-256").digest(text.getBytes(StandardCharsets.UTF_8));
            return "'sha256-" + Base64.getEncoder().encodeToString(digest) + "'";
        } catch (NoSuchAlgorithmException impossible) {
            throw new IllegalStateException(impossible);
        }
    }

    private static String resource(String name) {
        return Resources.text(PageFrame.class, name);
    }
}
