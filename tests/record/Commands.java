import java.io.BufferedReader;
import java.io.InputStreamReader;
import java.io.PrintStream;
import java.lang.reflect.Method;
import java.nio.charset.StandardCharsets;

/**
 * Runs the command line once for each line of standard input, its words separated by single blanks, all in one virtual
 * machine; a tab is a blank within a word. What a command prints is followed by a line with a zero byte, the command
 * and its exit status; with an argument, so is what it says on standard error.
 */
final class Commands {
    public static void main(String[] arguments) throws Exception {
        Method run = Class.forName("com.kelvo.tarn.cli.Tarn").getDeclaredMethod("run", String[].class);
        run.setAccessible(true);
        BufferedReader in = new BufferedReader(new InputStreamReader(System.in, StandardCharsets.UTF_8));
        for (String line = in.readLine(); line != null; line = in.readLine()) {
            String[] words = line.split(" ");
            for (int i = 0; i < words.length; i++) {
                words[i] = words[i].replace('\t', ' ');
            }
            Object status = run.invoke(null, (Object) words);
            for (PrintStream out : arguments.length == 0 ? new PrintStream[] {System.out}
                                                         : new PrintStream[] {System.out, System.err}) {
                out.println("\0" + line + ": " + status);
            }
        }
    }
}
