package com.kelvo.tarn.cli;

import java.io.PrintWriter;
import java.util.ArrayList;
import java.util.List;

/** A tree for people: a line per node, the branches drawn before it. */
final class Tree {
    private final String label;
    private final List<Tree> children = new ArrayList<>();

    Tree(String label) {
        this.label = label;
    }

    void add(Tree child) {
        children.add(child);
    }

    void print(PrintWriter out) {
        out.println(label);
        print(out, "");
    }

    private void print(PrintWriter out, String margin) {
        for (Tree child : children) {
            boolean last = child == children.get(children.size() - 1);
            out.println(margin + (last ? "└─ " : "├─ ") + child.label);
            child.print(out, margin + (last ? "   " : "│  "));
        }
    }
}
