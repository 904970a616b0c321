package com.kelvo.tarn.cli.commands;

import com.kelvo.tarn.cli.frame.Answer;
import com.kelvo.tarn.cli.frame.InquiryCommand;
import picocli.CommandLine.Command;

/** {@code build-date}: one call of {@code getLibraryBuildDate}. */
@Command(name = "build-date", description = "The library's build date.")
public final class BuildDateCommand extends InquiryCommand {
    @Override
    public Answer ask() {
        String date = library().buildDate();
        return Answer.page(date, out -> out.println(date));
    }
}
