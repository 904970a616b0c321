package com.kelvo.tarn.cli.output;

import java.util.ArrayList;
import java.util.List;

/** A tree for people: a line per node, the branches drawn before it. */
public final class Tree {
    private final String label;
    private final List<String> remarks = new ArrayList<>();
    private final List<Tree> children = new ArrayList<>();

    /**
     * A node without any below it.
     *
     * @param label its line
     */
    public Tree(String label) {
        this.label = label;
    }

    /**
     * Adds a branch after those that there are.
     *
     * @param child the node at its end
     */
    public void add(Tree child) {
        children.add(child);
    }

    /**
     * Adds a line under the node's own.
     *
     * @param text the line; an empty one is none
     */
    public void remark(String text) {
        if (!text.isEmpty()) {
            remarks.add(text);
        }
    }

    /**
     * Prints the node and all below it.
     *
     * @param out where
     */
    public void print(Page out) {
        print(out, "", "");
    }

    private void print(Page out, String branch, String margin) {
        String under = margin + (children.isEmpty() ? "  " : "│ ");
        out.printFolded(branch, under, label);
        remarks.forEach(text -> out.printFolded(under, under, text));
        for (Tree child : children) {
            boolean last = child == children.get(children.size() - 1);
            child.print(out, margin + (last ? "└─ " : "├─ "), margin + (last ? "   " : "│  "));
        }
    }
}
