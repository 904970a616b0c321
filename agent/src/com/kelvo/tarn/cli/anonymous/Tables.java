package com.kelvo.tarn.cli.anonymous;

import com.kelvo.tarn.cli.output.Resources;
import java.util.Arrays;
import java.util.HashMap;
import java.util.HashSet;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.stream.Collectors;

/** The tables beside this class. */
final class Tables {
    private Tables() {
    }

    /** {@return the lines of a table, without comments and empty ones} */
    static List<String> lines(String name) {
        return Resources.text(Tables.class, name).lines().filter(line -> !line.isBlank() && !line.startsWith("#"))
            .collect(Collectors.toList());
    }

    /** {@return the lists of words that stay, by their names} */
    static Map<String, Set<String>> wordLists() {
        Map<String, Set<String>> lists = new HashMap<>();
        for (String line : lines("words.txt")) {
            List<String> words = Arrays.asList(line.split(" "));
            lists.computeIfAbsent(words.get(0), added -> new HashSet<>()).addAll(words.subList(1, words.size()));
        }
        return lists;
    }
}
